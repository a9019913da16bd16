// tarn-cli check: is each file one we can read, which kind or version is it, and what the editor
// would tell the user on opening it.
#include <iostream>

#include "cli/Command.h"
#include "formats/ContentSniff.h"
#include "formats/FileKinds.h"
#include "foundation/AtomicFile.h"
#include "foundation/MessageTable.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/Validation.h"

namespace Tarn::Cli {
namespace {

void PrintNotices(const std::string& path, const std::vector<std::string>& notices) {
    for (const auto& notice : notices) std::cout << path << ": notice: " << notice << '\n';
}

// Any kind but a binary roaming list, and any file whose content is a JSON or text form: read
// it, then run the checks a save would run.
bool CheckDocument(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::string error;
    auto doc = ReadFileDocumentBytes(bytes, path, error);
    if (!doc) {
        std::cout << path << ": " << error << '\n';
        return false;
    }
    auto problems = doc->Check();
    std::cout << path << ": " << doc->KindName() << (problems.empty() ? ", valid" : ", not valid")
              << '\n';
    for (const auto& p : problems) std::cout << "  " << p.message << '\n';
    PrintNotices(path, doc->Notices());
    return problems.empty();
}

// Prints one line per file, then its notices, and reports whether it is valid.
bool CheckOne(const std::string& path) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path, bytes, error)) {
        std::cout << path << ": " << error << '\n';
        return false;
    }
    FileKind kind = KindForOpen(path);
    if ((kind != FileKind::None && kind != FileKind::RoamingList) ||
        SniffContent(bytes) != ContentForm::Binary || !MmssTextTitle(bytes).empty())
        return CheckDocument(path, bytes);
    CRLFile file(std::move(bytes));
    DetectResult result = DetectVersion(file);
    size_t firstLength = 0;
    if (!result.manager &&
        CheckConcatenatedPrl(file.Bytes().data(), file.Bytes().size(), firstLength)) {
        std::cout << path << ": Concatenated PRL file, outer CRC valid, first list " << firstLength
                  << " bytes, second list " << file.Bytes().size() - firstLength - 2
                  << " bytes (split it to edit the lists)\n";
        return true;
    }
    if (!result.manager) {
        std::cout << path << ": " << MessageText(Msg::NotRecognizedFormat);
        if (result.sizeAndCrcValid) std::cout << " (size and CRC hold; " << result.error << ")";
        else std::cout << " (" << result.error << ")";
        std::cout << '\n';
        return false;
    }
    const CRLManager& m = *result.manager;
    std::cout << path << ": " << m.GetVersionName() << ", size and CRC valid, "
              << (m.IsPrefixed() ? "prefixed" : "not prefixed") << ", "
              << m.GetData().GetAcqTable().GetSize() << " acquisition and "
              << m.GetData().GetSysTable().GetSize() << " system records\n";
    // The file itself is sound; what the editor's save checks would still refuse is worth
    // knowing before the list goes to a handset.
    for (const auto& issue : CheckRoamingList(m.GetData(), m.GetVersion()).issues)
        std::cout << "  warning: " << issue.Describe() << '\n';
    PrintNotices(path, RoamingListNotices(m.GetData()));
    return true;
}

const CommandRegistrar kRegistrar(10, "check", [](CLI::App& app) {
    auto files = std::make_shared<std::vector<std::string>>();
    CLI::App* sub = app.add_subcommand("check", "Check size, CRC and version of each file");
    sub->add_option("FILE", *files, "Files to check")->required();
    return std::function<int()>([files] {
        bool allValid = true;
        for (const auto& path : *files) allValid = CheckOne(path) && allValid;
        return allValid ? kExitOk : kExitFailure;
    });
});

}  // namespace
}  // namespace Tarn::Cli
