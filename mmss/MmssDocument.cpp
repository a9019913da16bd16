#include "mmss/MmssDocument.h"

#include <nlohmann/json.hpp>

#include "foundation/MessageTable.h"

namespace Tarn::Mmss {

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
        error = FormatMessage(SaveFailedMessage()) + " " + DescribeFailure(e);
    }
    return false;
}

std::string Document::LoadNotice() const {
    std::string text;
    for (const auto& notice : Notices()) text += (text.empty() ? "" : "\n") + notice;
    return text;
}

std::vector<CheckProblem> Document::Problems(const std::vector<std::string>& messages) {
    std::vector<CheckProblem> problems;
    problems.reserve(messages.size());
    for (const auto& m : messages) problems.push_back({m});
    return problems;
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
