// What the six MMSS file kinds share: guarded field reads, the record list with its 8-bit count,
// body padding and the size word, decimal header strings, grid cell helpers, JSON field helpers
// and the PLMN list kind taken from a path.
#pragma once

// Standard library
#include <array>
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
// Stores the file length (`totalBits` / 8) in the 16-bit size word at byte 0. A longer file is
// refused with FormatError naming `kind`, the size and the limit: a wrapped size word would hand
// a handset a file that says it ends long before it does.
inline constexpr uint64_t kMaxSizeWordBytes = 0xFFFF;
void PatchSizeWord(CRLFile& file, uint64_t totalBits, const char* kind);
// "65,535": byte counts in messages, grouped by thousands.
std::string GroupedNumber(uint64_t value);

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

// ---- PLMN codes (MCC and MNC as nibbles, digit 1 first) ----
using Digits = std::array<uint8_t, 3>;
// The six nibbles in 3GPP packed-BCD order: MCC digit 2, MCC digit 1, MNC digit 3, MCC digit 3,
// MNC digit 2, MNC digit 1 (each pair high nibble first).
void ReadPlmnDigits(CRLFile& file, Digits& mcc, Digits& mnc);
void WritePlmnDigits(CRLFile& file, const Digits& mcc, const Digits& mnc);
// How the editor shows a code: the MCC as three "%u"; the MNC as "%X%X%X" when digit 1 or 2 is F
// (so "FFF" stays visible), two digits when digit 3 is F, else three digits.
std::string ShowMcc(const Digits& mcc);
std::string ShowMnc(const Digits& mnc);
// What a user may type: an MCC of three decimal digits; an MNC of two or three characters, each
// a decimal digit or the wildcard F/f (two characters leave digit 3 as F).
bool ParseMcc(const std::string& text, Digits& mcc);
bool ParseMnc(const std::string& text, Digits& mnc);
// A lossless text of the nibbles for JSON: one hexadecimal character a nibble, the MNC in two
// characters when digit 3 is F and digits 1 and 2 are decimal ("01"), else in three ("F1F").
std::string NibbleText(const Digits& digits, bool mnc);
bool ParseNibbleText(const std::string& text, bool mnc, Digits& digits);

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
// `out[key]`: the records in order, each an object with its "index" and its own fields.
void PutRecords(nlohmann::json& out, const char* key, const CRLItemList& records);

// Splits a text line at tabs, dropping empty pieces and trimming blanks from each token.
std::vector<std::string> SplitFields(const std::string& line);

}  // namespace Mmss
}  // namespace Tarn
