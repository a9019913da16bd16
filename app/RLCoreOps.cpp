#include "app/RLCoreOps.h"

#include <algorithm>
#include <cctype>

#include "foundation/AtomicFile.h"
#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItem.h"
#if __has_include("roaming_list/RLManagerText.h")
#include "roaming_list/RLManagerText.h"
#endif
#if __has_include("roaming_list/Validation.h")
#include "roaming_list/Validation.h"
#endif
#if __has_include("roaming_list/Conversion.h")
#include "roaming_list/Conversion.h"
#endif
#if __has_include("roaming_list/ConcatPrl.h")
#include "roaming_list/ConcatPrl.h"
#endif

namespace Tarn {

bool IsTextPath(const std::string& path) {
    const auto dot = path.find_last_of('.');
    const auto slash = path.find_last_of('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return false;
    std::string ext = path.substr(dot + 1);
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext == "txt";
}

ListReadResult ReadListFile(const std::string& path) {
    return IsTextPath(path) ? ReadTextListFile(path) : ReadBinaryListFile(path);
}

ListReadResult ReadTextListFile(const std::string& path) {
    ListReadResult result;
    result.fromText = true;
#if __has_include("roaming_list/RLManagerText.h")
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path, bytes, error)) {
        result.error = MessageText(Msg::NotRecognizedFormat);
        return result;
    }
    TextDetectResult detected = DetectTextVersion(std::string(bytes.begin(), bytes.end()));
    if (!detected.data) {
        result.error = detected.error.empty() ? std::string(MessageText(Msg::NotRecognizedFormat))
                                              : detected.error;
        return result;
    }
    // The document keeps a binary manager: a text list saved under another name is a binary file.
    result.manager = CreateClassFactory(detected.version)->CreateManager();
    result.manager->AttachData(detected.data);
#else
    (void)path;
    result.error = "Text roaming lists cannot be read yet.";
#endif
    return result;
}

ListReadResult ReadBinaryListFile(const std::string& path) {
    ListReadResult result;
    CRLFile file;
    std::string error;
    if (!file.Load(path, error)) {
        result.error = MessageText(Msg::NotRecognizedFormat);
        return result;
    }
    DetectResult detected = DetectVersion(file);
    if (!detected.manager) {
        result.error = detected.sizeAndCrcValid
                           ? detected.error
                           : std::string(MessageText(Msg::NotRecognizedFormat));
        return result;
    }
    result.manager = std::move(detected.manager);
    return result;
}

bool WriteListFile(CRLManager& manager, const std::string& path, std::string& error) {
    return IsTextPath(path) ? WriteTextListFile(manager, path, error)
                            : WriteBinaryListFile(manager, path, error);
}

bool WriteTextListFile(const CRLManager& manager, const std::string& path, std::string& error) {
    std::string text;
    try {
        text = RenderListText(manager);
    } catch (const std::exception& e) {
        error = e.what();
        return false;
    }
    return WriteFileAtomically(path, text, error);
}

bool WriteBinaryListFile(CRLManager& manager, const std::string& path, std::string& error) {
    CRLFile file;
    if (!manager.WriteList(file)) {
        error = manager.GetLastError();
        return false;
    }
    return file.Save(path, error);
}

std::string RenderListText(const CRLManager& manager) {
#if __has_include("roaming_list/RLManagerText.h")
    return RenderRoamingListText(manager.GetData(), manager.GetVersion());
#else
    (void)manager;
    throw std::runtime_error(std::string(MessageText(Msg::CannotRenderText)));
#endif
}

#if __has_include("roaming_list/Validation.h")

std::unique_ptr<CRLData> TakeListFromViews(int version, const CRLData& base,
                                           const HeaderTexts& header, const Grid& acqGrid,
                                           const Grid& sysGrid, ListProblem& problem) {
    problem = {};
    auto data = std::make_unique<CRLData>(base);
    const ValidationResult result = TakeListFromEditor(header.defRoamInd, header.prefListId, acqGrid,
                                                       sysGrid, version, *data);
    if (result.Ok()) {
        data->GetProperties().prefOnly = header.prefOnly;
        return data;
    }
    const ValidationIssue& issue = result.issues.front();
    problem.messageId = issue.messageId;
    problem.text = issue.text;
    problem.row = issue.row;
    problem.column = issue.column;
    if (issue.messageId == Msg::DefaultRoamIndRange)
        problem.place = ListProblem::Place::DefaultRoamInd;
    else if (issue.messageId == Msg::PrefListIdRange)
        problem.place = ListProblem::Place::PrefListId;
    else if (!issue.table.empty() && issue.table == acqGrid.GetTableName())
        problem.place = ListProblem::Place::AcqTable;
    else if (!issue.table.empty() && issue.table == sysGrid.GetTableName())
        problem.place = ListProblem::Place::SysTable;
    problem.warning = issue.messageId == Msg::NeedOneAcqRecord || issue.messageId == Msg::NeedOneSysRecord;
    return nullptr;
}

#else

namespace {

template <typename Make>
void ReadTable(const Grid& grid, const CNameList& types, int version, const CRLItemList* acq,
               CRLItemList& out, ListProblem::Place place, Make make, ListProblem& problem) {
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        const std::string name = grid.GetCellText(0, row);
        int code = 0;
        if (name.empty() || !types.FindValue(name, code)) {
            problem = {Msg::EmptyRows, std::string(MessageText(Msg::EmptyRows)), place, 0, row};
            throw std::runtime_error(problem.text);
        }
        auto item = make(code, version);
        if (!item) {
            problem = {Msg::EmptyRows, std::string(MessageText(Msg::EmptyRows)), place, 0, row};
            throw std::runtime_error(problem.text);
        }
        item->ReadFromGrid(grid, row, GridContext{version, acq});
        out.Add(std::move(item));
    }
}

}  // namespace

std::unique_ptr<CRLData> TakeListFromViews(int version, const CRLData& base,
                                           const HeaderTexts& header, const Grid& acqGrid,
                                           const Grid& sysGrid, ListProblem& problem) {
    problem = {};
    if (header.defRoamInd.empty()) {
        problem = {Msg::DefaultRoamIndRange, FormatMessage(Msg::DefaultRoamIndRange, {255}),
                   ListProblem::Place::DefaultRoamInd};
        return nullptr;
    }
    if (header.prefListId.empty()) {
        problem = {Msg::PrefListIdRange, FormatMessage(Msg::PrefListIdRange, {65535}),
                   ListProblem::Place::PrefListId};
        return nullptr;
    }
    auto data = std::make_unique<CRLData>();
    data->GetProperties() = base.GetProperties();
    data->GetProperties().defRoamInd = static_cast<uint8_t>(std::stoi(header.defRoamInd));
    data->GetProperties().prefListId = static_cast<uint16_t>(std::stoi(header.prefListId));
    data->GetProperties().prefOnly = header.prefOnly;
    const auto& names = CRLNameTables::Instance();
    try {
        ReadTable(
            acqGrid, names.AcqTypes(version), version, nullptr, data->GetAcqTable().Items(),
            ListProblem::Place::AcqTable,
            [](int code, int v) -> std::unique_ptr<CRLItem> { return CreateAcqItem(code, v); },
            problem);
        ReadTable(
            sysGrid, names.SysTypes(version), version, &data->GetAcqTable().Items(),
            data->GetSysTable().Items(), ListProblem::Place::SysTable,
            [](int code, int v) -> std::unique_ptr<CRLItem> { return CreateSysItem(code, v); },
            problem);
    } catch (const GridError& e) {
        const bool acq = e.TableName() == acqGrid.GetTableName();
        problem = {e.MessageId(), e.Text(),
                   acq ? ListProblem::Place::AcqTable : ListProblem::Place::SysTable, e.Column(),
                   e.Row()};
        return nullptr;
    } catch (const std::exception& e) {
        if (problem.messageId == 0) problem = {0, e.what()};
        return nullptr;
    }
    if (data->GetAcqTable().GetSize() == 0) {
        problem = {Msg::NeedOneAcqRecord, std::string(MessageText(Msg::NeedOneAcqRecord))};
        problem.warning = true;
        return nullptr;
    }
    if (data->GetSysTable().GetSize() == 0) {
        problem = {Msg::NeedOneSysRecord, std::string(MessageText(Msg::NeedOneSysRecord))};
        problem.warning = true;
        return nullptr;
    }
    return data;
}

#endif

ConversionOutcome ConvertListVersion(const CRLData&, int, int) {
    throw std::runtime_error(std::string(MessageText(Msg::ErrorConverting)));
}

bool IsConcatenatedListFile(const std::string&) {
    return false;
}

void JoinListFiles(const std::string&, const std::string&, const std::string&) {
    throw std::runtime_error("Join is not available yet.");
}

void SplitListFile(const std::string&, const std::string&, const std::string&) {
    throw std::runtime_error("Split is not available yet.");
}

}  // namespace Tarn
