#include "app/RLCoreOps.h"

#include <algorithm>
#include <cctype>

#include "foundation/AtomicFile.h"
#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/Conversion.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/Validation.h"

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
    return RenderRoamingListText(manager.GetData(), manager.GetVersion());
}

std::unique_ptr<CRLData> TakeListFromViews(int version, const CRLData& base,
                                           const HeaderTexts& header, const Grid& acqGrid,
                                           const Grid& sysGrid, ListProblem& problem) {
    problem = {};
    auto data = std::make_unique<CRLData>(base);
    const ValidationResult result =
        TakeListFromEditor(header.defRoamInd, header.prefListId, acqGrid, sysGrid, version, *data);
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
    problem.warning =
        issue.messageId == Msg::NeedOneAcqRecord || issue.messageId == Msg::NeedOneSysRecord;
    return nullptr;
}

ConversionOutcome ConvertListVersion(const CRLData& data, int fromVersion, int toVersion) {
    ConversionResult converted = ConvertRoamingList(data, fromVersion, toVersion);
    return {std::move(converted.data), std::move(converted.changes)};
}

bool IsConcatenatedListFile(const std::string& path) {
    return IsConcatenatedPrl(path);
}

void JoinListFiles(const std::string& first, const std::string& second, const std::string& out) {
    JoinPrl(first, second, out);
}

void SplitListFile(const std::string& in, const std::string& first, const std::string& second) {
    SplitPrl(in, first, second);
}

}  // namespace Tarn
