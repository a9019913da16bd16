#include "roaming_list/RLManagerText.h"

#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "foundation/MessageTable.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/DataException.h"
#include "roaming_list/FieldBuffer.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItem.h"

namespace Tarn {
namespace {

constexpr std::string_view kBanner = "=============== ROAMING LIST ===============";
constexpr std::string_view kAcqTitle = "*********** Acquisition Table ***********";
constexpr std::string_view kSysTitle = "*********** System Table ***********";
constexpr std::string_view kAcqColumns =
    "\tINDEX\tACQ TYPE\tCH1\tCH2\tCH3\tCH4\tCH5\tCH6\tCH7 - - CH31\r\n";
// Unlike the acquisition column line, this one has no leading tab.
constexpr std::string_view kSysColumns =
    "INDEX\tSYS TYPE\tNEG/PREF\tGEO\tPRI\tACQ IND\tROAM IND\tASSN INC\tASSN TAG\tPN ASSN\t"
    "DATA ASSN\tSID, NID / MCC, IMSI_11_12 / SUBNETID / PLMN TYPE, PLMN, LAC\r\n";
constexpr std::string_view kColumnLineStart = "INDEX";

constexpr std::string_view kTypeLabel = "Roaming List Type:";
constexpr std::string_view kPrefOnlyLabel = "Preferred Only:";
constexpr std::string_view kPrefListIdLabel = "Preferred List ID:";
constexpr std::string_view kDefRoamIndLabel = "Default Roaming Indicator:";

// The binary format's record count fields: 9 bits of acquisition and 14 bits of system records.
constexpr size_t kMaxAcqRecords = 511;
constexpr size_t kMaxSysRecords = 16383;

std::string_view Trim(std::string_view s) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    return s;
}

bool IEquals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

bool StartsWithI(std::string_view s, std::string_view prefix) {
    return s.size() >= prefix.size() && IEquals(s.substr(0, prefix.size()), prefix);
}

// Decimal digits only, no sign, at most `max`.
bool ParseDecimal(std::string_view s, uint32_t max, uint32_t& value) {
    if (s.empty() || s.size() > 10) return false;
    uint64_t v = 0;
    for (char c : s) {
        if (c < '0' || c > '9') return false;
        v = v * 10 + static_cast<uint64_t>(c - '0');
    }
    if (v > max) return false;
    value = static_cast<uint32_t>(v);
    return true;
}

// Built by appending only: GCC 12 at -O3 misreads a prepend such as `"(" + std::string&&` as an
// overlapping copy (-Wrestrict).
std::string Quote(std::string_view s) {
    constexpr size_t kShown = 40;
    std::string q = "\"";
    q += s.substr(0, kShown);
    if (s.size() > kShown) q += "...";
    q += '"';
    return q;
}

// Lines of the text without their CR LF (a bare LF ends a line too); a leading UTF-8 byte order
// mark, which some editors add when a text is saved, is skipped.
class LineReader {
public:
    explicit LineReader(std::string_view text) : text_(text) {
        if (text_.substr(0, 3) == "\xEF\xBB\xBF") text_.remove_prefix(3);
    }
    bool Next(std::string_view& line) {
        if (pos_ >= text_.size()) return false;
        size_t end = text_.find('\n', pos_);
        if (end == std::string_view::npos) end = text_.size();
        line = text_.substr(pos_, end - pos_);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        pos_ = end + 1;
        ++number_;
        return true;
    }
    size_t Number() const { return number_; }

private:
    std::string_view text_;
    size_t pos_ = 0;
    size_t number_ = 0;
};

[[noreturn]] void Fail(DataError code, size_t line, const std::string& what) {
    throw CDataException(code, "(line " + std::to_string(line) + ": " + what + ")");
}

// The header block: every line up to the acquisition table's title. Lines it does not know are
// passed over, so a text with further header lines still reads.
struct Header {
    std::optional<std::string> type, prefOnly, prefListId, defRoamInd;
    bool reachedAcqTitle = false;
};

Header ScanHeader(LineReader& reader) {
    Header h;
    std::string_view line;
    while (reader.Next(line)) {
        const std::string_view t = Trim(line);
        if (t == kAcqTitle) {
            h.reachedAcqTitle = true;
            break;
        }
        const auto take = [&](std::string_view label, std::optional<std::string>& into) {
            if (!StartsWithI(t, label)) return false;
            into = std::string(Trim(t.substr(label.size())));
            return true;
        };
        take(kTypeLabel, h.type) || take(kPrefOnlyLabel, h.prefOnly) ||
            take(kPrefListIdLabel, h.prefListId) || take(kDefRoamIndLabel, h.defRoamInd);
    }
    return h;
}

// Refills `tokens` with views into the line; the vector is reused from line to line, so a table of
// thousands of lines is read without allocating or copying per line. One pass: separators (tabs,
// and the blanks and CR around fields) are skipped, then a field runs to the next tab and loses
// its trailing blanks.
void Tokens(std::string_view line, std::vector<std::string_view>& tokens) {
    const auto blank = [](char c) { return c == ' ' || c == '\r'; };
    tokens.clear();
    const char* p = line.data();
    const char* const end = p + line.size();
    while (true) {
        while (p != end && (*p == '\t' || blank(*p))) ++p;
        if (p == end) return;
        const char* const start = p;
        while (p != end && *p != '\t') ++p;
        const char* stop = p;
        while (blank(stop[-1])) --stop;
        tokens.emplace_back(start, static_cast<size_t>(stop - start));
    }
}

// The title and the column line of a table; blank lines before the column line are passed over.
void ExpectColumnLine(LineReader& reader, DataError code, const char* table) {
    std::string_view line;
    while (reader.Next(line)) {
        const std::string_view t = Trim(line);
        if (t.empty()) continue;
        if (StartsWithI(t, kColumnLineStart)) return;
        Fail(code, reader.Number(), std::string("the column line of the ") + table +
                                        " is missing, found " + Quote(t));
    }
    throw CDataException(DataError::PrematureEof,
                         std::string("(the ") + table + " ends before its column line)");
}

struct TableKind {
    const char* name;
    DataError tableError, indexError, typeError;
    size_t maxRecords;
};
constexpr TableKind kAcqKind{"acquisition table", DataError::InvalidAcqTable,
                             DataError::InvalidAcqTableIndex, DataError::InvalidAcqType,
                             kMaxAcqRecords};
constexpr TableKind kSysKind{"system table", DataError::InvalidSysTable,
                             DataError::InvalidSysTableIndex, DataError::InvalidSysRecType,
                             kMaxSysRecords};

// Reads the record lines of one table until `endTitle` (or the end of the text when it is empty).
// Returns false when the text ended before the title.
template <typename Create>
bool ReadRecords(LineReader& reader, const TableKind& kind, std::string_view endTitle,
                 CRLItemList& items, Create create) {
    std::string_view line;
    std::vector<std::string_view> tokens;
    while (reader.Next(line)) {
        const std::string_view t = Trim(line);
        if (t.empty()) continue;
        if (!endTitle.empty() && t == endTitle) return true;
        const size_t number = reader.Number();
        Tokens(line, tokens);
        uint32_t index = 0;
        uint32_t type = 0;
        if (tokens.size() < 2 || !ParseDecimal(tokens[0], 0xFFFFFFFFu, index))
            Fail(kind.tableError, number, "not a record line: " + Quote(t));
        if (index != items.GetSize())
            Fail(kind.indexError, number,
                 "record " + std::to_string(items.GetSize()) + " expected, found " +
                     std::string(tokens[0]));
        if (items.GetSize() >= kind.maxRecords)
            Fail(kind.tableError, number,
                 "more than " + std::to_string(kind.maxRecords) + " records in the " + kind.name);
        if (!ParseDecimal(tokens[1], 255, type))
            Fail(kind.typeError, number, "type " + Quote(tokens[1]));
        std::unique_ptr<CRLItem> item = create(static_cast<int>(type));
        if (!item)
            Fail(kind.typeError, number,
                 "type " + std::string(tokens[1]) + " is unknown in this version");
        try {
            item->FromTokens(std::span<const std::string_view>(tokens).subspan(2));
        } catch (const CDataException& e) {
            throw CDataException(static_cast<DataError>(e.Code()),
                                 "(line " + std::to_string(number) + ")" +
                                     (e.Detail().empty() ? "" : " " + e.Detail()));
        } catch (const std::exception& e) {
            Fail(kind.tableError, number, e.what());
        }
        items.Add(std::move(item));
    }
    return endTitle.empty();
}

std::unique_ptr<CRLData> ParseText(std::string_view text, int version) {
    LineReader reader(text);
    Header h = ScanHeader(reader);
    const auto missing = [](std::string_view label) {
        return CDataException(DataError::PrematureEof,
                              "(the header ends before its \"" +
                                  std::string(label.substr(0, label.size() - 1)) + "\" line)");
    };
    if (!h.type) throw missing(kTypeLabel);
    if (!h.prefOnly) throw missing(kPrefOnlyLabel);
    if (!h.prefListId) throw missing(kPrefListIdLabel);
    if (!h.defRoamInd) throw missing(kDefRoamIndLabel);

    auto data = std::make_unique<CRLData>();
    CPropData& prop = data->GetProperties();
    if (IEquals(*h.prefOnly, "TRUE")) {
        prop.prefOnly = true;
    } else if (IEquals(*h.prefOnly, "FALSE")) {
        prop.prefOnly = false;
    } else {
        throw CDataException(DataError::InvalidPrefOnly, "(" + Quote(*h.prefOnly) + ")");
    }
    // The message table has no text of its own for these two settings.
    uint32_t value = 0;
    if (!ParseDecimal(*h.prefListId, 0xFFFF, value))
        throw CDataException(static_cast<DataError>(0),
                             "(Preferred List ID " + Quote(*h.prefListId) +
                                 " is not a number from 0 to 65535)");
    prop.prefListId = static_cast<uint16_t>(value);
    if (!ParseDecimal(*h.defRoamInd, 0xFF, value))
        throw CDataException(static_cast<DataError>(0),
                             "(Default Roaming Indicator " + Quote(*h.defRoamInd) +
                                 " is not a number from 0 to 255)");
    prop.defRoamInd = static_cast<uint8_t>(value);
    prop.ssprPRev = version >= 3 ? 3 : 0;
    prop.reserved = 0;
    prop.numCommonSubnet = 0;
    prop.listSize = 0;

    if (!h.reachedAcqTitle)
        throw CDataException(DataError::PrematureEof, "(the acquisition table is missing)");
    ExpectColumnLine(reader, DataError::InvalidAcqTable, kAcqKind.name);
    CRLItemList& acq = data->GetAcqTable().Items();
    if (!ReadRecords(reader, kAcqKind, kSysTitle, acq,
                     [version](int type) { return CreateAcqItem(type, version); }))
        throw CDataException(DataError::PrematureEof, "(the system table is missing)");
    ExpectColumnLine(reader, DataError::InvalidSysTable, kSysKind.name);
    CRLItemList& sys = data->GetSysTable().Items();
    ReadRecords(reader, kSysKind, {}, sys,
                [version](int type) { return CreateSysItem(type, version); });
    acq.SetAnnouncedCount(static_cast<uint32_t>(acq.GetSize()));
    sys.SetAnnouncedCount(static_cast<uint32_t>(sys.GetSize()));
    return data;
}

// Whether two tabs stand side by side, eight bytes at a time: a search for the pair itself would
// stop at every single tab of the line.
bool HasDoubledTab(const char* p, size_t length) {
    constexpr uint64_t kLow7 = 0x7F7F7F7F7F7F7F7Full;
    constexpr uint64_t kTabs = 0x0909090909090909ull;
    bool lastWasTab = false;
    for (; length >= 8; p += 8, length -= 8) {
        uint64_t word;
        std::memcpy(&word, p, 8);
        const uint64_t v = word ^ kTabs;
        // 0x80 in exactly the bytes that are tabs (no carry crosses a byte).
        const uint64_t tabs = ~(((v & kLow7) + kLow7) | v | kLow7);
        if ((tabs & (tabs << 8)) != 0 || (lastWasTab && p[0] == '\t')) return true;
        lastWasTab = p[7] == '\t';
    }
    for (; length != 0; ++p, --length) {
        if (lastWasTab && *p == '\t') return true;
        lastWasTab = *p == '\t';
    }
    return false;
}

// A field can only be blank or read "Invalid" where the line starts with a tab or holds two in a
// row, a blank or the name's first letter. Most record lines hold none of these, so they need not
// be walked field by field.
bool MayHoldBadField(const char* line, size_t length) {
    return length != 0 &&
           (*line == '\t' || std::memchr(line, ' ', length) ||
            std::memchr(line, kInvalidName[0], length) || HasDoubledTab(line, length));
}

// One record's line; refuses fields that the reader could not give back as they are.
void RenderRecord(std::string& out, const CRLItem& item, size_t index, int type,
                  const char* table) {
    const auto refuse = [&](const std::string& why) {
        throw CTextRenderException(std::string(table) + " record " + std::to_string(index) + ": " +
                                   why);
    };
    // "\t<index>\t<type>\t", the fields and the line's end gather in one buffer; a record that
    // vouches for its fields goes into the text in one append, unchecked.
    const size_t start = out.size();
    FieldBuffer line(out);
    line.AddRaw('\t');
    line.AddCount(index);
    line.Add(static_cast<uint32_t>(type));
    const size_t headLength = line.Used();
    bool vouched = false;
    try {
        vouched = item.AppendText(line);
    } catch (const std::exception& e) {
        refuse(e.what());
    }
    if (vouched) {
        line.AddRaw("\r\n");
        line.Flush();
        return;
    }
    line.Flush();
    // The others are checked where they landed. A line break anywhere is reported before a bad
    // field.
    const char* const begin = out.data() + start + headLength;
    const size_t length = out.size() - start - headLength;
    if (std::memchr(begin, '\n', length) || std::memchr(begin, '\r', length))
        refuse("a field holds a line break");
    // Then the first blank or nameless field, if the line can hold one at all. The empty piece
    // after the closing tab is no field.
    if (MayHoldBadField(begin, length)) {
        const char* q = begin;
        const char* const end = begin + length;
        for (int field = 1; q != end; ++field) {
            const char* stop = q;
            while (stop != end && *stop != '\t') ++stop;
            const std::string_view text(q, static_cast<size_t>(stop - q));
            if (text.find_first_not_of(' ') == std::string_view::npos)
                refuse("field " + std::to_string(field) + " is empty");
            if (text == kInvalidName) refuse("field " + std::to_string(field) + " has no name");
            if (stop == end) break;
            q = stop + 1;
        }
    }
    out += "\r\n";
}

}  // namespace

CTextRenderException::CTextRenderException(std::string detail)
    : text_(MessageText(Msg::CannotRenderText)), detail_(std::move(detail)) {}

unsigned CTextRenderException::MessageId() const { return Msg::CannotRenderText; }

std::string RenderRoamingListText(const CRLData& data, int version, bool as1xEV) {
    if (version < kMinVersion || version > kMaxVersion)
        throw CTextRenderException("there is no roaming list version " + std::to_string(version));
    const CPropData& prop = data.GetProperties();
    // Room for the whole text up front: a record line is rarely longer than this.
    constexpr size_t kLineGuess = 72;
    std::string out;
    out.reserve(1024 + kLineGuess * (data.GetAcqTable().GetSize() + data.GetSysTable().GetSize()));
    out += "\r\n\t\t";
    out += kBanner;
    out += "\r\n\r\n\tRoaming List Type:\t\t";
    out += (as1xEV && version == 3) ? std::string(k1xEVTypeName) : VersionName(version);
    out += FormatText("\r\n\tPreferred Only:\t\t%s\r\n", {prop.prefOnly ? "TRUE" : "FALSE"});
    out += FormatText("\tPreferred List ID:\t\t%d\r\n", {prop.prefListId});
    out += FormatText("\tDefault Roaming Indicator:\t%d\r\n", {prop.defRoamInd});

    out += "\r\n\t\t";
    out += kAcqTitle;
    out += "\r\n\r\n";
    out += kAcqColumns;
    const CRLItemList& acq = data.GetAcqTable().Items();
    for (size_t i = 0; i < acq.GetSize(); ++i) {
        const CAcqItem* item = acq.GetAt(i)->AsAcqItem();
        if (!item) throw CTextRenderException("acquisition record " + std::to_string(i) +
                                              ": not an acquisition record");
        RenderRecord(out, *item, i, item->GetAcqType(), "acquisition");
    }

    out += "\r\n\t\t";
    out += kSysTitle;
    out += "\r\n\r\n";
    out += kSysColumns;
    const CRLItemList& sys = data.GetSysTable().Items();
    for (size_t i = 0; i < sys.GetSize(); ++i) {
        const CSysItem* item = sys.GetAt(i)->AsSysItem();
        if (!item)
            throw CTextRenderException("system record " + std::to_string(i) + ": not a system record");
        RenderRecord(out, *item, i, item->GetSysType(), "system");
    }
    return out;
}

std::string CRLManagerText::GetTextTypeName() const {
    return is1xEV_ ? std::string(k1xEVTypeName) : GetVersionName();
}

bool CRLManagerText::AcceptsTypeName(const std::string& name) const {
    return IEquals(name, GetVersionName());
}

bool CRLManagerTextC::AcceptsTypeName(const std::string& name) const {
    return CRLManagerText::AcceptsTypeName(name) || IEquals(name, k1xEVTypeName);
}

void CRLManagerText::AttachData(std::unique_ptr<CRLData>& data) {
    CRLManager::AttachData(data);
    if (GetVersion() >= 3) data_->GetProperties().ssprPRev = 3;
}

bool CRLManagerText::ReadText(const std::string& text) {
    lastError_.clear();
    LineReader reader(text);
    const Header h = ScanHeader(reader);
    if (!h.type) {
        lastError_ = CDataException(DataError::PrematureEof,
                                    "(there is no \"Roaming List Type\" line)").what();
        return false;
    }
    if (!AcceptsTypeName(*h.type)) {
        std::string detail = "(";
        detail += Quote(*h.type);
        detail += ')';
        lastError_ = CDataException(DataError::InvalidRlType, detail).what();
        return false;
    }
    data_ = ParseText(text, GetVersion());
    is1xEV_ = IEquals(*h.type, k1xEVTypeName);
    return true;
}

std::string CRLManagerText::WriteText() const {
    return RenderRoamingListText(*data_, GetVersion(), is1xEV_);
}

bool CRLManagerText::ValidateFile(CRLFile& file) {
    lastError_.clear();
    const std::vector<uint8_t>& bytes = file.Bytes();
    LineReader reader(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    const Header h = ScanHeader(reader);
    if (!h.type) {
        lastError_ = DataErrorText(static_cast<int>(DataError::PrematureEof));
        return false;
    }
    if (!AcceptsTypeName(*h.type)) {
        lastError_ = DataErrorText(static_cast<int>(DataError::InvalidRlType));
        return false;
    }
    return true;
}

bool CRLManagerText::ReadList(CRLFile& file) {
    const std::vector<uint8_t>& bytes = file.Bytes();
    if (!ReadText(std::string(bytes.begin(), bytes.end())))
        throw CDataException(DataError::InvalidRlType);
    return true;
}

bool CRLManagerText::WriteList(CRLFile& file) {
    lastError_.clear();
    std::string text;
    try {
        text = WriteText();
    } catch (const CTextRenderException& e) {
        lastError_ = e.what();
        return false;
    }
    file.SetLength(0);
    file.SeekToBegin();
    file.SetBitOffset(0);
    file.Write(text.data(), text.size());
    return true;
}

std::unique_ptr<CReadHelper> CRLManagerText::CreateAcqReadHelper() const {
    if (GetVersion() >= 3) return std::make_unique<CReadHelperAcqC>(GetVersion());
    return std::make_unique<CReadHelperAcqA>(GetVersion());
}

std::unique_ptr<CReadHelper> CRLManagerText::CreateSysReadHelper() const {
    if (GetVersion() >= 3) return std::make_unique<CReadHelperSysC>(GetVersion());
    return std::make_unique<CReadHelperSysA>(GetVersion());
}

std::string CRLManagerTextA::GetDescription() const { return "Roaming list text, IS-683-A"; }
std::string CRLManagerTextB::GetDescription() const { return "Roaming list text, IS-683-B"; }
std::string CRLManagerTextC::GetDescription() const {
    return "Roaming list text, IS-683-C (also IS-683A+1xEV)";
}
std::string CRLManagerTextD::GetDescription() const { return "Roaming list text, IS-683-D"; }
std::string RLManagerTextE::GetDescription() const { return "Roaming list text, IS-683-E"; }

std::unique_ptr<CRLManagerText> CreateTextManager(int version) {
    switch (version) {
        case 1: return std::make_unique<CRLManagerTextA>();
        case 2: return std::make_unique<CRLManagerTextB>();
        case 3: return std::make_unique<CRLManagerTextC>();
        case 4: return std::make_unique<CRLManagerTextD>();
        default: return std::make_unique<RLManagerTextE>();
    }
}

TextDetectResult DetectTextVersion(const std::string& text) {
    TextDetectResult result;
    for (int version = kMinVersion; version <= kMaxVersion; ++version) {
        std::unique_ptr<CRLManagerText> manager = CreateTextManager(version);
        try {
            if (!manager->ReadText(text)) {
                result.error = manager->GetLastError();
                continue;
            }
        } catch (const std::exception& e) {
            // Only one manager accepts a given type name, so its fault is the text's fault.
            result.error = e.what();
            return result;
        }
        result.data = manager->DetachData();
        result.version = version;
        result.is1xEV = manager->Is1xEV();
        result.error.clear();
        return result;
    }
    return result;
}

}  // namespace Tarn
