#include "roaming_list/Validation.h"

#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/SysItemMccMnc.h"

namespace Tarn {
namespace {

const char* const kAcqTable = kAcqTableName;
const char* const kSysTable = CSysItem::TableName();
constexpr int kAcqIndexColumn = 4;
constexpr int kSysTypeIs2000 = 0;
constexpr int kSysTypeIs856 = 1;
constexpr int kSysTypePlmn = 2;
constexpr int kSysTypeMccMnc = 3;
constexpr int kSysType1xMcc = 14;
constexpr int kMccMncSubnet = CSysItemMccMnc::kSubnet;
constexpr int kAcqHdrGeneric = 11;

ValidationIssue Issue(unsigned id, std::string text, std::string table = {}, int row = -1,
                      int column = -1) {
    ValidationIssue issue;
    issue.messageId = id;
    issue.text = std::move(text);
    issue.table = std::move(table);
    issue.row = row;
    issue.column = column;
    return issue;
}

ValidationIssue FromGridError(const GridError& e) {
    return Issue(e.MessageId(), e.Text(), e.TableName(), e.Row(), e.Column());
}

ValidationIssue FromDataError(const CDataException& e, const std::string& table, int row) {
    ValidationIssue issue = Issue(0, e.what(), table, row);
    issue.dataError = e.Code();
    return issue;
}

// Decimal digits only (blanks around them allowed), at most `max`.
bool ParseField(const std::string& text, unsigned max, unsigned& value) {
    size_t b = text.find_first_not_of(" \t");
    size_t e = text.find_last_not_of(" \t");
    if (b == std::string::npos) return false;
    unsigned long v = 0;
    for (size_t i = b; i <= e; ++i) {
        if (text[i] < '0' || text[i] > '9') return false;
        v = v * 10 + static_cast<unsigned long>(text[i] - '0');
        if (v > max) return false;
    }
    value = static_cast<unsigned>(v);
    return true;
}

std::string Trimmed(const std::string& s) {
    size_t b = s.find_first_not_of(" \t");
    if (b == std::string::npos) return {};
    return s.substr(b, s.find_last_not_of(" \t") - b + 1);
}

int MccMncSubtype(const CSysItem& item) {
    const auto* mccMnc = dynamic_cast<const CSysItemMccMnc*>(&item);
    return mccMnc ? static_cast<int>(mccMnc->GetSubtype()) : 0;
}

std::string TableNameOf(const Grid& grid, const char* fallback) {
    std::string name = grid.GetTableName();
    return name.empty() ? fallback : name;
}

// The record type of a grid row: the previous record's when the cell still shows its name,
// else the type list's value of the name (raising the list's data error for an unknown one).
template <typename TypeOf, typename Create>
ValidationResult ReadTable(const Grid& grid, const CNameList& types, const CRLItemList* previous,
                           const char* fallbackName, const GridContext& context, CRLItemList& out,
                           TypeOf typeOf, Create create) {
    ValidationResult result;
    const std::string table = TableNameOf(grid, fallbackName);
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        try {
            const std::string cell = Trimmed(grid.GetCellText(0, row));
            if (cell.empty()) throw GridError(Msg::EmptyRows, 0, row, table);
            const CRLItem* before =
                previous && static_cast<size_t>(row) < previous->GetSize() ? previous->GetAt(row) : nullptr;
            std::unique_ptr<CRLItem> item;
            if (before && cell == types.GetName(typeOf(*before))) {
                item = before->Clone();
            } else {
                item = create(types.GetValue(cell));
                if (!item) throw CDataException(types.Error(), "(\"" + cell + "\")");
            }
            item->ReadFromGrid(grid, row, context);
            out.Add(std::move(item));
        } catch (const GridError& e) {
            result.issues.push_back(FromGridError(e));
        } catch (const CDataException& e) {
            result.issues.push_back(FromDataError(e, table, row));
        } catch (const std::exception& e) {
            // Not a failure any record raises on purpose, but a row must never end the reading.
            result.issues.push_back(Issue(0, e.what(), table, row));
        }
    }
    return result;
}

void Append(ValidationResult& into, const ValidationResult& more) {
    into.issues.insert(into.issues.end(), more.issues.begin(), more.issues.end());
}

}  // namespace

std::string ValidationIssue::Describe() const {
    std::string where;
    if (!table.empty()) where = table;
    if (row >= 0) where += (where.empty() ? "" : ", ") + std::string("row ") + std::to_string(row);
    if (column >= 0) where += ", column " + std::to_string(column);
    std::string head = messageId ? std::to_string(messageId) : "data error " + std::to_string(dataError);
    if (!where.empty()) head += " (" + where + ")";
    return head + ": " + text;
}

std::optional<ValidationIssue> CheckHeaderFields(const std::string& defRoamIndText,
                                                 const std::string& prefListIdText,
                                                 CPropData* into) {
    unsigned roamInd = 0;
    unsigned listId = 0;
    if (!ParseField(defRoamIndText, 255, roamInd))
        return Issue(Msg::DefaultRoamIndRange, FormatMessage(Msg::DefaultRoamIndRange, {255}));
    if (!ParseField(prefListIdText, 65535, listId))
        return Issue(Msg::PrefListIdRange, FormatMessage(Msg::PrefListIdRange, {65535}));
    if (into) {
        into->defRoamInd = static_cast<uint8_t>(roamInd);
        into->prefListId = static_cast<uint16_t>(listId);
    }
    return std::nullopt;
}

unsigned AcqTypeRefusal(int sysType, int mccMncSubtype, int acqType) {
    if (acqType == kAcqTypeSpecial) return 0;
    switch (sysType) {
        case kSysTypeIs2000:
        case kSysType1xMcc:
            return acqType >= 1 && acqType <= 10 ? 0 : Msg::AcqIndexIs2000;
        case kSysTypeIs856:
            return acqType == kAcqHdrGeneric ? 0 : Msg::AcqIndexIs856;
        case kSysTypePlmn:
            return acqType >= 12 && acqType <= 15 ? 0 : Msg::AcqIndexPlmn;
        case kSysTypeMccMnc:
            if (mccMncSubtype == kMccMncSubnet)
                return acqType == kAcqHdrGeneric ? 0 : Msg::AcqIndexMccMncSubnet;
            return acqType >= 11 && acqType <= 15 ? Msg::AcqIndexMccMncSidNid : 0;
        default:
            return Msg::AcqIndexUndefined;
    }
}

ValidationResult CheckRoamingList(const CRLData& data, int /*version*/) {
    ValidationResult result;
    const CRLItemList& acq = data.GetAcqTable().Items();
    const CRLItemList& sys = data.GetSysTable().Items();
    if (acq.IsEmpty())
        result.issues.push_back(Issue(Msg::NeedOneAcqRecord, FormatMessage(Msg::NeedOneAcqRecord)));
    if (sys.IsEmpty())
        result.issues.push_back(Issue(Msg::NeedOneSysRecord, FormatMessage(Msg::NeedOneSysRecord)));

    for (size_t i = 0; i < acq.GetSize(); ++i) {
        const auto* item = dynamic_cast<const CAcqItem*>(acq.GetAt(i));
        if (!item || !item->IsValid())
            result.issues.push_back(Issue(Msg::ErrorSavingAcq, FormatMessage(Msg::ErrorSavingAcq),
                                          kAcqTable, static_cast<int>(i)));
    }
    for (size_t i = 0; i < sys.GetSize(); ++i) {
        const int row = static_cast<int>(i);
        const auto* item = dynamic_cast<const CSysItem*>(sys.GetAt(i));
        if (!item || !item->IsValid()) {
            result.issues.push_back(Issue(Msg::ErrorSavingSys, FormatMessage(Msg::ErrorSavingSys),
                                          kSysTable, row));
            if (!item) continue;
        }
        const unsigned index = item->GetAcqIndex();
        if (index >= acq.GetSize()) {
            result.issues.push_back(Issue(Msg::InvalidAcqIndex,
                                          FormatMessage(Msg::InvalidAcqIndex, {kAcqIndexColumn, row}),
                                          kSysTable, row, kAcqIndexColumn));
            continue;
        }
        const auto* target = dynamic_cast<const CAcqItem*>(acq.GetAt(index));
        if (!target) continue;  // already named above
        const int sysType = item->GetSysType();
        const unsigned refusal = AcqTypeRefusal(
            sysType, sysType == kSysTypeMccMnc ? MccMncSubtype(*item) : 0, target->GetAcqType());
        if (refusal)
            result.issues.push_back(Issue(refusal, FormatMessage(refusal, {kAcqIndexColumn, row}),
                                          kSysTable, row, kAcqIndexColumn));
    }
    return result;
}

ValidationResult ReadAcqTableFromGrid(const Grid& grid, int version, CRLItemList& out,
                                      const CRLItemList* previous) {
    GridContext context;
    context.version = version;
    return ReadTable(
        grid, CRLNameTables::Instance().AcqTypes(version), previous, kAcqTable, context, out,
        [](const CRLItem& item) {
            const auto* acq = dynamic_cast<const CAcqItem*>(&item);
            return acq ? static_cast<int>(acq->GetAcqType()) : -1;
        },
        [version](int type) -> std::unique_ptr<CRLItem> { return CreateAcqItem(type, version); });
}

ValidationResult ReadSysTableFromGrid(const Grid& grid, int version, const CRLItemList& acqTable,
                                      CRLItemList& out, const CRLItemList* previous) {
    GridContext context;
    context.version = version;
    context.acqTable = &acqTable;
    return ReadTable(
        grid, CRLNameTables::Instance().SysTypes(version), previous, kSysTable, context, out,
        [](const CRLItem& item) {
            const auto* sys = dynamic_cast<const CSysItem*>(&item);
            return sys ? static_cast<int>(sys->GetSysType()) : -1;
        },
        [version](int type) -> std::unique_ptr<CRLItem> { return CreateSysItem(type, version); });
}

ValidationResult TakeListFromEditor(const std::string& defRoamIndText,
                                    const std::string& prefListIdText, const Grid& acqGrid,
                                    const Grid& sysGrid, int version, CRLData& data) {
    ValidationResult result;
    CPropData prop = data.GetProperties();
    if (auto issue = CheckHeaderFields(defRoamIndText, prefListIdText, &prop)) {
        result.issues.push_back(*issue);
        return result;
    }
    CRLData taken;
    taken.GetProperties() = prop;
    CRLItemList& acq = taken.GetAcqTable().Items();
    CRLItemList& sys = taken.GetSysTable().Items();
    Append(result, ReadAcqTableFromGrid(acqGrid, version, acq, &data.GetAcqTable().Items()));
    if (!result.Ok()) return result;
    Append(result, ReadSysTableFromGrid(sysGrid, version, acq, sys, &data.GetSysTable().Items()));
    if (!result.Ok()) return result;
    Append(result, CheckRoamingList(taken, version));
    if (!result.Ok()) return result;
    acq.SetAnnouncedCount(static_cast<uint32_t>(acq.GetSize()));
    sys.SetAnnouncedCount(static_cast<uint32_t>(sys.GetSize()));
    data.GetProperties() = prop;
    data.GetAcqTable().Items() = std::move(acq);
    data.GetSysTable().Items() = std::move(sys);
    return result;
}

}  // namespace Tarn
