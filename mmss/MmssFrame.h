// What the six MMSS file kinds share: guarded field reads, the record list with its 8-bit count,
// body padding and the size word, decimal header strings, grid cell helpers, JSON field helpers
// and the PLMN list kind taken from a path.
#pragma once

// Standard library
#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <vector>

// Tarn
#include "roaming_list/DataException.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn {

class CNameList;
class Grid;

namespace Mmss {

// A file that is not of the kind it was read as, with the text the user sees.
class FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Bits that remain between the stream's position and the end of the file.
uint64_t BitsLeft(const CRLFile& file);
// Refuses with "Premature end of file." naming `what` when fewer than `bits` bits remain. The bit
// stream itself never fails past the end, so every reader asks before it reads.
void Require(const CRLFile& file, uint64_t bits, const char* what);
// Require + ReadBits.
uint32_t Take(CRLFile& file, int width, const char* what);

// A record list as every bit-stream kind stores it: an 8-bit count, then the records packed.
inline constexpr size_t kMaxListRecords = 255;
using RecordMaker = std::function<std::unique_ptr<CRLItem>()>;
uint32_t ReadRecordList(CRLFile& file, CRLItemList& list, const RecordMaker& make);
uint32_t WriteRecordList(CRLFile& file, const CRLItemList& list);

// Zero bits after a body of `bodyBits` up to a whole byte; returns the pad width.
uint32_t PadBody(CRLFile& file, uint64_t bodyBits);
// Stores the file length (`totalBits` / 8) in the 16-bit size word at byte 0.
void PatchSizeWord(CRLFile& file, uint64_t totalBits);

// Header strings are what the user typed; they become numbers only when written. Parsing is the
// plain C kind: leading blanks, a sign, then digits up to the first other character; no digits
// give 0. Huge values saturate instead of overflowing.
long long ParseDecimal(const std::string& text);
// Only the digits 0-9, at least one.
bool IsDigits(const std::string& text);
std::string Decimal(long long value);

// Header check: empty -> `missing`, a value above `high` -> `invalid`. Like the editor's forms, the
// comparison is signed, so a negative entry passes and is written as its low bits.
void CheckHeaderValue(const std::string& value, long long high, const std::string& missing,
                      const std::string& invalid, std::vector<std::string>& problems);

// The PLMN list kind named in a path: 1 EHPLMN, 2 OPLMN, 3 UPLMN, 0 none. A case-sensitive
// substring search over the whole path (".ehplmn", ".EHPLMN", ".uplmn", ".UPLMN", ".oplmn",
// ".OPLMN", first hit wins), so "list.EHPLMN.bak" is an EHPLMN list and "list.Ehplmn" is nothing.
int PlmnListKindFromPath(const std::string& path);

// ---- grid cells ----
// The text of a cell; an empty cell or one holding BADVAL raises message 140.
std::string RequiredCell(const Grid& grid, int column, int row);
// A number in [low, high]: 140 when empty, 139 with the bounds when not a number or outside.
long long NumberCell(const Grid& grid, int column, int row, long long low, long long high);
// A value chosen by name. "Invalid" (what a value without a name shows) keeps `current`, so a
// value the editor has no name for survives a round trip through the grid. A name the list does
// not hold raises 139 with the list's lowest and highest values.
int NameCell(const Grid& grid, int column, int row, const CNameList& names, int current);
// Shows `value` by name in a drop-down cell.
void SetNameCell(Grid& grid, int column, int row, const CNameList& names, int value);
void SetHeadings(Grid& grid, const std::vector<std::string>& titles);

// ---- JSON fields ----
// Each throws CDataException(code, "(<key> ...)") for a missing key, a wrong JSON type, or a value
// outside [low, high].
uint32_t JsonUInt(const nlohmann::json& in, const char* key, uint32_t high, DataError code);
uint32_t JsonUIntOr(const nlohmann::json& in, const char* key, uint32_t high, uint32_t fallback,
                    DataError code);
bool JsonBoolOr(const nlohmann::json& in, const char* key, bool fallback, DataError code);
std::string JsonText(const nlohmann::json& in, const char* key, DataError code);
std::string JsonTextOr(const nlohmann::json& in, const char* key, const std::string& fallback,
                       DataError code);
const nlohmann::json& JsonArray(const nlohmann::json& in, const char* key, DataError code);

// A header or form string in JSON: a number when the string is a plain decimal that prints back
// the same ("7", "310"), the string itself otherwise ("007", "", "12a"), so the file's JSON reads
// naturally and still gives back exactly what the form held.
void PutFormValue(nlohmann::json& out, const char* key, const std::string& value);
// Reads either form back; an absent key gives the empty string.
std::string GetFormValue(const nlohmann::json& in, const char* key, DataError code);

// Splits a text line at tabs, dropping empty pieces and trimming blanks from each token.
std::vector<std::string> SplitFields(const std::string& line);

}  // namespace Mmss
}  // namespace Tarn
