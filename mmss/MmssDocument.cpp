#include "mmss/MmssDocument.h"

#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"

namespace Tarn::Mmss {

std::vector<CheckProblem> Document::Check() const {
    std::vector<std::string> messages = KindProblems();
    if (RecordCount() == 0) messages.push_back(FormatMessage(traits_.needOneRecord));
    std::vector<CheckProblem> problems;
    problems.reserve(messages.size());
    for (auto& m : messages) problems.push_back({std::move(m)});
    return problems;
}

bool Document::Write(std::vector<uint8_t>& bytes, std::string& error) const {
    const std::vector<CheckProblem> problems = Check();
    if (!problems.empty()) {
        error = problems.front().message;
        return false;
    }
    try {
        CRLFile file;
        Save(file);
        bytes = file.TakeBytes();
        return true;
    } catch (const std::exception& e) {
        error = FormatMessage(traits_.saveFailed) + " " + DescribeFailure(e);
    }
    return false;
}

std::string Document::LoadNotice() const {
    std::string text;
    for (const auto& notice : Notices()) text += (text.empty() ? "" : "\n") + notice;
    return text;
}

std::vector<std::string> Document::LoadNotices() const {
    if (traits_.noRecords != 0 && RecordCount() == 0) return {FormatMessage(traits_.noRecords)};
    return {};
}

size_t Document::RecordCount() const {
    size_t count = 0;
    for (size_t t = 0; t < TabCount(); ++t) count += TabRecords(t).GetSize();
    return count;
}

std::vector<std::string> Document::NewTabValues(const std::vector<std::vector<std::string>>&) const {
    std::vector<std::string> values;
    for (const auto& field : TabForm()) values.push_back(field.initial);
    return values;
}

std::string DescribeFailure(const std::exception& e) {
    // JSON library messages start with "[json.exception...]"; the user only needs the reason.
    if (dynamic_cast<const nlohmann::json::exception*>(&e)) {
        std::string text = e.what();
        const auto close = text.find("] ");
        if (text.rfind("[json.exception", 0) == 0 && close != std::string::npos)
            text = text.substr(close + 2);
        return "The JSON does not describe this file: " + text;
    }
    return e.what();
}

}  // namespace Tarn::Mmss
