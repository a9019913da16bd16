// System::Io::File's open dispositions, and the whole-file helpers the readers use: reads capped
// at a size, and writes that never leave half a file behind.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>

#include "foundation/AtomicFile.h"
#include "foundation/Exception.h"
#include "foundation/File.h"
#include "tests/support/Files.h"

namespace {

namespace fs = std::filesystem;
using System::Io::Access;
using System::Io::Disposition;
using System::Io::File;
using System::Io::Sharing;

class FileTest : public ::testing::Test {
protected:
    fs::path make(const std::string& name, const std::string& content) {
        Tarn::Test::WriteText(dir_ / name, content);
        return dir_ / name;
    }
    static std::string contents(const fs::path& p) { return Tarn::Test::Slurp(p); }
    // The message of the Lang::Exception `f` throws, or "" when it throws none.
    static std::string messageOf(const std::function<void()>& f) {
        try {
            f();
        } catch (const Lang::Exception& e) {
            return e.what();
        }
        return {};
    }
    size_t entries() const { return static_cast<size_t>(std::distance(fs::directory_iterator(dir_), {})); }

    const Tarn::Test::TempDir tmp_;
    const fs::path& dir_ = tmp_.Path();
};

// Each disposition against a file holding "hello" or against no file: the refusal, or what the
// file holds once the open has happened.
TEST_F(FileTest, OpenDispositions) {
    const struct {
        const char* name;
        int access;
        int disposition;
        bool preexisting;
        const char* error;    // the refusal, with %p for the path
        const char* content;  // the file afterwards; nullptr when it must not exist
    } cases[] = {
        {"create new refuses an existing file", Access::ReadWrite, Disposition::CreateNew, true,
         "File: %p already exists.", "hello"},
        {"create new makes a file", Access::ReadWrite, Disposition::CreateNew, false, "", ""},
        {"create always replaces", Access::ReadWrite, Disposition::CreateAlways, true, "", ""},
        {"open existing refuses a missing file", Access::Read, Disposition::OpenExisting, false,
         "File: %p does not exist.", nullptr},
        {"open existing keeps the content", Access::ReadWrite, Disposition::OpenExisting, true, "", "hello"},
        {"open always creates", Access::ReadWrite, Disposition::OpenAlways, false, "", ""},
        {"open always keeps the content", Access::ReadWrite, Disposition::OpenAlways, true, "", "hello"},
        {"truncate existing refuses a missing file", Access::ReadWrite, Disposition::TruncateExisting, false,
         "File: %p does not exist.", nullptr},
        {"truncate existing empties", Access::ReadWrite, Disposition::TruncateExisting, true, "", ""},
        {"reading never truncates", Access::Read, Disposition::TruncateExisting, true, "", "hello"},
        {"reading a missing file fails in the open", Access::Read, Disposition::OpenAlways, false,
         "Failed to Open File \"%p\": No such file or directory.", nullptr},
        // Read (1) to read/write (3) are the accesses; those either side are refused, and "create
        // always" deletes nothing on its way to the refusal.
        {"access below read", 0, Disposition::CreateAlways, true, "Illegal Open Mode", "hello"},
        {"access past read/write", 4, Disposition::CreateAlways, true, "Illegal Open Mode", "hello"},
        {"access past read/write, open always", 4, Disposition::OpenAlways, true, "Illegal Open Mode", "hello"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path p = dir_ / "target";
        fs::remove(p);
        if (c.preexisting) make("target", "hello");
        std::string expected = c.error;
        if (auto at = expected.find("%p"); at != std::string::npos) expected.replace(at, 2, p.string());

        File f;
        const std::string error = messageOf([&] { f.open(p, c.access, 0, c.disposition, Sharing::DenyNone); });
        EXPECT_EQ(error.substr(0, expected.size()), expected);
        EXPECT_EQ(error.empty(), expected.empty()) << error;
        EXPECT_EQ(f.isOpen(), expected.empty());
        f.close();
        if (c.content) {
            EXPECT_EQ(contents(p), c.content);
        } else {
            EXPECT_FALSE(fs::exists(p));
        }
    }
}

// A whole-file read takes a file of exactly its limit (64 MiB unless the caller says otherwise)
// and refuses one byte more before reading it.
TEST_F(FileTest, WholeFileReadsTakeUpToTheirLimit) {
    constexpr uint64_t kDefault = uint64_t{64} << 20;
    const struct {
        uint64_t size;
        std::optional<uint64_t> limit;
        bool reads;
    } cases[] = {{0, 0, true},
                 {5, 5, true},
                 {6, 5, false},
                 {kDefault, std::nullopt, true},
                 {kDefault + 1, std::nullopt, false}};
    const fs::path p = dir_ / "f";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        make("f", std::string(c.size < 8 ? c.size : 0, 'a'));
        fs::resize_file(p, c.size);
        std::vector<uint8_t> bytes = {1};
        std::string error;
        const bool read =
            c.limit ? Tarn::ReadWholeFile(p, bytes, error, *c.limit) : Tarn::ReadWholeFile(p, bytes, error);
        EXPECT_EQ(read, c.reads);
        EXPECT_EQ(bytes.size(), c.reads ? c.size : 0u);
        EXPECT_EQ(error, c.reads ? "" : "File too large (" + std::to_string(c.size) + " bytes): " + p.string());
    }
    std::vector<uint8_t> bytes;
    std::string error;
    EXPECT_FALSE(Tarn::ReadWholeFile(dir_ / "none", bytes, error));
    EXPECT_EQ(error, "No such file: " + (dir_ / "none").string());
    EXPECT_FALSE(Tarn::ReadWholeFile(dir_, bytes, error));
    EXPECT_EQ(error, "Not a regular file: " + dir_.string());
}

TEST_F(FileTest, AtomicWritesLeaveTheOldFileOrTheWholeNewOne) {
    const fs::path p = make("list.prl", "old");
    ::chmod(p.c_str(), 0640);
    std::string error;
    ASSERT_TRUE(Tarn::WriteFileAtomically(p, std::string("new"), error)) << error;
    EXPECT_EQ(contents(p), "new");
    EXPECT_EQ(fs::status(p).permissions(), fs::perms(0640));  // kept from the file it replaced
    ASSERT_TRUE(Tarn::WriteFileAtomically(dir_ / "empty", std::vector<uint8_t>{}, error)) << error;
    EXPECT_EQ(fs::file_size(dir_ / "empty"), 0u);
    EXPECT_EQ(entries(), 2u);  // no temporary file left beside them

    fs::create_directory(dir_ / "folder");
    EXPECT_FALSE(Tarn::WriteFileAtomically(dir_ / "folder", std::string("x"), error));
    EXPECT_EQ(error.rfind("Cannot replace " + (dir_ / "folder").string() + ": ", 0), 0u) << error;
    EXPECT_TRUE(fs::is_directory(dir_ / "folder"));
    EXPECT_EQ(entries(), 3u);
    EXPECT_FALSE(Tarn::WriteFileAtomically(dir_ / "none" / "f", std::string("x"), error));
    EXPECT_EQ(error, "Cannot create a file in " + (dir_ / "none").string() + ": No such file or directory");
}

}  // namespace
