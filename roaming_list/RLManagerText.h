// The text form of a roaming list: rendering any list of any version, and the text managers
// (CRLManagerText and CRLManagerTextA..RLManagerTextE) that read such a text back.
//
// The text is CRLF lines: a header block with the list type and its three settings, then the
// acquisition table and the system table, each a title, a column line and one line per record:
// "\t<index>\t<type code>\t" followed by the record's own tab-terminated fields.
//
// Reading record lines: a line is split at tabs, and a run of tabs counts as one separator, so
// leading and trailing tabs (and tabs added to line columns up by hand) change nothing; blanks
// around a field are dropped too. No record field is ever empty, so nothing is lost by this; a
// record whose text would hold an empty field is refused by the renderer instead.
//
// What the text does not carry: SSPR_P_REV, the reserved header bits and the number of common
// subnet records. A list read from text gets SSPR_P_REV 3 in versions 3..5 (0 below), reserved 0
// and a common subnet count of 0, which is also what a binary write of it holds. Two record types
// show less than their binary form holds, so a list read back from its text may differ there:
// - an undefined acquisition record (type 253) shows only its length; it comes back holding as
//   many zero octets;
// - a 1x-MCC record shows only MCC and IMSI_11_12; it comes back with its SID and NID made anew
//   from them and the NID stored, whatever inclusion code and identifiers the file held.
// Everything else reads back to the same bytes.
#pragma once

#include <exception>
#include <memory>
#include <string>

#include "roaming_list/RLData.h"
#include "roaming_list/RLManager.h"

namespace Tarn {

// The version name the text form prints for lists of version 3 whose user asked for it.
inline constexpr const char* k1xEVTypeName = "IS-683A+1xEV";

// A list that cannot be shown as text: a record whose values have no text. what() is message 162;
// Detail() names the record.
class CTextRenderException : public std::exception {
public:
    explicit CTextRenderException(std::string detail);
    unsigned MessageId() const;
    const char* what() const noexcept override { return text_.c_str(); }
    const std::string& Detail() const { return detail_; }

private:
    std::string text_;
    std::string detail_;
};

// The whole text of `data` as a list of `version` (1..5). With `as1xEV` a version 3 list is
// titled "IS-683A+1xEV" (other versions ignore it). Throws CTextRenderException when a record
// cannot be rendered: its ToText fails, a field reads "Invalid" (a value without a name) or is
// empty, or the record is not an acquisition or system record.
std::string RenderRoamingListText(const CRLData& data, int version, bool as1xEV = false);

class CRLManagerText : public CRLManager {
public:
    // The type name the text carries: the version name, or "IS-683A+1xEV" when Is1xEV().
    std::string GetTextTypeName() const override;
    // Whether a "Roaming List Type" value names this manager's version (case-insensitive).
    virtual bool AcceptsTypeName(const std::string& name) const;
    // Whether the text read said "IS-683A+1xEV" (and a write will say it again).
    bool Is1xEV() const { return is1xEV_; }
    void Set1xEV(bool value) { is1xEV_ = value && GetVersion() == 3; }

    void AttachData(std::unique_ptr<CRLData>& data) override;

    // The file's bytes are the text. ValidateFile succeeds when the header's type line names this
    // manager's version; ReadList then reads the whole text into a fresh list, raising
    // CDataException on the first fault (with the line number in its detail).
    bool ValidateFile(CRLFile& file) override;
    bool ReadList(CRLFile& file) override;
    // Replaces the file's bytes with the text; false with message 162 in GetLastError() when a
    // record cannot be rendered.
    bool WriteList(CRLFile& file) override;

    // The same on a string: false when the text is of another version, CDataException on faults.
    bool ReadText(const std::string& text);
    // Throws CTextRenderException.
    std::string WriteText() const;

    std::unique_ptr<CReadHelper> CreateAcqReadHelper() const override;
    std::unique_ptr<CReadHelper> CreateSysReadHelper() const override;

private:
    bool is1xEV_ = false;
};

class CRLManagerTextA : public CRLManagerText {
public:
    int GetVersion() const override { return 1; }
    std::string GetStandardName() const override { return "IS-683-A"; }
    std::string GetDescription() const override;
};

class CRLManagerTextB : public CRLManagerText {
public:
    int GetVersion() const override { return 2; }
    std::string GetStandardName() const override { return "IS-683-B"; }
    std::string GetDescription() const override;
};

// Also reads texts titled "IS-683A+1xEV": such a list is a version 3 list.
class CRLManagerTextC : public CRLManagerText {
public:
    int GetVersion() const override { return 3; }
    std::string GetStandardName() const override { return "IS-683-C"; }
    std::string GetDescription() const override;
    bool AcceptsTypeName(const std::string& name) const override;
};

class CRLManagerTextD : public CRLManagerText {
public:
    int GetVersion() const override { return 4; }
    std::string GetStandardName() const override { return "IS-683-D"; }
    std::string GetDescription() const override;
};

class RLManagerTextE : public CRLManagerText {
public:
    int GetVersion() const override { return 5; }
    std::string GetStandardName() const override { return "IS-683-E"; }
    std::string GetDescription() const override;
};

// 1 -> A .. 4 -> D, anything else -> E, like the binary factories.
std::unique_ptr<CRLManagerText> CreateTextManager(int version);

// The outcome of trying the five text managers in version order on a text.
struct TextDetectResult {
    std::unique_ptr<CRLData> data;  // the list read, or nothing
    int version = 0;                // 1..5 when a manager read the text
    bool is1xEV = false;            // the text was titled "IS-683A+1xEV" (version 3)
    std::string error;              // why not: the type name matched no version, or the fault
                                    // met by the manager whose version it named
};

// Reads a text with the first manager that accepts its type name; never throws.
TextDetectResult DetectTextVersion(const std::string& text);

}  // namespace Tarn
