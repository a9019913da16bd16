// The unattended "f", "c" and "u" actions for the MMSS kinds. They run without views, over the
// same headless documents the editor saves through, so a file written here is byte for byte
// what a save in the editor writes.
#include <nlohmann/json.hpp>

#include "app/UiPrompts.h"
#include "app/mmss/MmssDocuments.h"
#include "foundation/AtomicFile.h"
#include "mmss/MmssDocument.h"
#include "mmss/MmssFrame.h"

namespace Tarn::App {
namespace {

void Report(const std::string& text) {
    Prompts().Message(nullptr, QString::fromStdString(text), MsgIcon::Error);
}

// The path that names the kind: a PLMN list takes its kind from the name, and either argument
// may be the one that carries it.
std::string KindPath(FileKind kind, const std::string& first, const std::string& second) {
    if (kind == FileKind::Plmn && Mmss::PlmnListKindFromPath(first) == 0) return second;
    return first;
}

std::unique_ptr<FileDocument> ReadKind(const FileKindInfo& info, const std::string& path,
                                       const std::string& kindPath) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path, bytes, error)) {
        Report(error);
        return nullptr;
    }
    std::unique_ptr<FileDocument> doc = info.read(bytes, kindPath, error);
    if (!doc) Report(error);
    return doc;
}

bool WriteBytes(const FileDocument& doc, const std::string& path) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!doc.Write(bytes, error) || !WriteFileAtomically(path, bytes, error)) {
        Report(error);
        return false;
    }
    return true;
}

}  // namespace

int RunMmssCommandLine(FileKind kind, const QString& option, const QString& firstArg,
                       const QString& secondArg) {
    const FileKindInfo* info = FindFileKind(kind);
    if (!info) {
        Report("The Roaming List file is not a recognized format.");
        return 1;
    }
    const std::string first = firstArg.toStdString();
    const std::string second = secondArg.toStdString();
    const std::string kindPath = KindPath(kind, first, second);

    if (option == "f") {
        std::unique_ptr<FileDocument> doc = ReadKind(*info, first, kindPath);
        if (!doc) return 1;
        std::string error;
        if (!WriteFileAtomically(second, doc->RenderText(), error)) {
            Report(error);
            return 1;
        }
        return 0;
    }
    if (option == "c") {
        std::unique_ptr<FileDocument> doc = ReadKind(*info, first, kindPath);
        if (!doc) return 1;
        const std::vector<CheckProblem> problems = doc->Check();
        for (const auto& p : problems) Report(p.message);
        if (!problems.empty()) return 1;
        return WriteBytes(*doc, second) ? 0 : 1;
    }
    if (option == "u") {
        std::vector<uint8_t> bytes;
        std::string error;
        if (!ReadWholeFile(first, bytes, error)) {
            Report(error);
            return 1;
        }
        const nlohmann::json json = nlohmann::json::parse(bytes.begin(), bytes.end(), nullptr,
                                                          /*allow_exceptions=*/false);
        if (json.is_discarded()) {
            Report(first + " does not hold JSON.");
            return 1;
        }
        std::unique_ptr<FileDocument> doc = info->fromJson(json, kindPath, error);
        if (!doc) {
            Report(error);
            return 1;
        }
        return WriteBytes(*doc, second) ? 0 : 1;
    }
    Report("Unknown option \"" + option.toStdString() + "\".");
    return 1;
}

}  // namespace Tarn::App
