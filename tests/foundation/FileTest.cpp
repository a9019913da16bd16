// System::Io::File and the whole-file helpers: open dispositions and sharing, streams that keep
// their place, the text of every refusal, reads capped at a size, and writes that never leave half
// a file behind.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>

#include "foundation/AtomicFile.h"
#include "foundation/Exception.h"
#include "foundation/File.h"
#include "foundation/FileSystem.h"

namespace {

namespace fs = std::filesystem;
using System::Io::Access;
using System::Io::Disposition;
using System::Io::File;
using System::Io::Options;
using System::Io::Origin;
using System::Io::Sharing;

class FileTest : public ::testing::Test {
protected:
    void SetUp() override {
        static int counter = 0;
        dir_ = fs::temp_directory_path() /
               ("tarn-file-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    fs::path make(const std::string& name, const std::string& content) {
        const fs::path p = dir_ / name;
        std::ofstream(p, std::ios::binary) << content;
        return p;
    }
    static std::string contents(const fs::path& p) {
        std::ifstream in(p, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
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

    fs::path dir_;
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

TEST_F(FileTest, EmptyPathsFoldersAndMissingFilesAreRefused) {
    File f;
    EXPECT_EQ(messageOf([&] { f.open("", Access::ReadWrite, 0, Disposition::CreateNew, Sharing::DenyNone); }),
              std::string("Failed to Open File \"\": ") + Lang::errnoText(ENOENT));
    EXPECT_EQ(messageOf([&] { f.open("", Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone); }),
              "File:  does not exist.");
    EXPECT_EQ(messageOf([&] { f.open(dir_, Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone); }),
              "Failed to Open File \"" + dir_.string() + "\": " + Lang::errnoText(EACCES));
    EXPECT_FALSE(f.isOpen());
    for (const fs::path& p : {dir_, dir_ / "none"})
        EXPECT_EQ(messageOf([&] { System::FileSystem::getFileSize(p); }), "Failed to get size: Not a file");
    const fs::path p = make("sized", std::string(1234, 'z'));
    EXPECT_EQ(System::FileSystem::getFileSize(p), 1234u);
    System::FileSystem::deleteFile(p);
    EXPECT_FALSE(System::FileSystem::exists(p));
    EXPECT_EQ(messageOf([&] { System::FileSystem::deleteFile(p); }),
              "Failed to Delete File \"" + p.string() + "\": " + Lang::errnoText(ENOENT));
}

TEST_F(FileTest, ClosedFilesNullBuffersAndTheWrongDirectionAreRefused) {
    File f;
    char byte = 0;
    for (const auto& call : std::vector<std::function<void()>>{
             [&] { f.read(&byte, 1); }, [&] { f.write(&byte, 1); }, [&] { f.seek(0, Origin::Begin); },
             [&] { f.flush(); }, [&] { (void)f.eof(); }})
        EXPECT_EQ(messageOf(call), "file is not open");
    EXPECT_NO_THROW(f.close());

    const fs::path p = make("b", "x");
    f.open(p, Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone);
    EXPECT_EQ(messageOf([&] { f.open(p, Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone); }),
              "File already open");
    EXPECT_EQ(messageOf([&] { f.read(nullptr, 1); }), "read buffer is NULL");
    EXPECT_EQ(messageOf([&] { f.write(nullptr, 1); }), "write buffer is NULL");
    EXPECT_EQ(messageOf([&] { f.write("x", 1); }), "fwrite failed: " + std::string(Lang::errnoText(EBADF)));
    EXPECT_EQ(f.read(&byte, 1), 1u);  // the first open stays usable
    EXPECT_EQ(byte, 'x');

    File out;
    out.open(p, Access::Write, 0, Disposition::OpenExisting, Sharing::DenyNone);
    EXPECT_EQ(messageOf([&] { out.read(&byte, 1); }), "fread failed: " + std::string(Lang::errnoText(EBADF)));
}

TEST_F(FileTest, ReadsWritesAndSeeksKeepTheirPlace) {
    const fs::path p = make("rw", "abcdef");
    File f;
    f.open(p, Access::ReadWrite, 0, Disposition::OpenAlways, Sharing::DenyNone);
    f.write("XY", 2);
    char buffer[8] = {};
    EXPECT_EQ(f.read(buffer, 2), 2u);
    EXPECT_EQ(std::string(buffer, 2), "cd");
    f.write("Z", 1);
    f.flush();
    EXPECT_EQ(contents(p), "XYcdZf");
    // A short read at the end is no error and sets end-of-file; a seek clears it.
    EXPECT_FALSE(f.eof());
    EXPECT_EQ(f.read(buffer, 8), 1u);
    EXPECT_TRUE(f.eof());
    EXPECT_EQ(f.read(buffer, 8), 0u);
    EXPECT_EQ(f.seek(-3, Origin::End), 3);
    EXPECT_FALSE(f.eof());
    EXPECT_EQ(f.seek(2, Origin::Current), 5);
    EXPECT_EQ(f.seek(5'000'000'000LL, Origin::Begin), 5'000'000'000LL);
    EXPECT_EQ(messageOf([&] { f.seek(-1, Origin::Begin); }), "seek failed");
    EXPECT_EQ(f.seek(0, Origin::Current), 5'000'000'000LL);  // a failed seek moves nothing
    f.close();

    File log;  // an appending stream writes at the end wherever it was moved
    log.open(p, Access::ReadWrite, Options::Append, Disposition::OpenAlways, Sharing::DenyNone);
    log.seek(0, Origin::Begin);
    log.write("!", 1);
    log.close();
    EXPECT_EQ(contents(p), "XYcdZf!");
}

TEST_F(FileTest, SharingModesExcludeEachOther) {
    const fs::path p = make("shared", "hello");
    const struct {
        int first;
        int second;
        bool secondOpens;
    } cases[] = {
        {Sharing::DenyNone, Sharing::DenyReadWrite, true},
        {Sharing::DenyWrite, Sharing::DenyWrite, true},
        {Sharing::DenyWrite, Sharing::DenyRead, false},
        {Sharing::DenyReadWrite, Sharing::DenyWrite, false},
        {Sharing::DenyReadWrite, Sharing::DenyNone, true},
        {42, Sharing::DenyWrite, false},  // any other value denies both
    };
    for (const auto& c : cases) {
        File first;
        first.open(p, Access::Read, 0, Disposition::OpenExisting, c.first);
        File second;
        // A refused writer must not have emptied the file on its way to the refusal.
        const std::string error =
            messageOf([&] { second.open(p, Access::Write, 0, Disposition::OpenExisting, c.second); });
        EXPECT_EQ(second.isOpen(), c.secondOpens) << c.first << "/" << c.second << ": " << error;
        if (!c.secondOpens) {
            EXPECT_EQ(error.rfind("Failed to Open File \"" + p.string() + "\": ", 0), 0u) << error;
            EXPECT_EQ(contents(p), "hello");
        }
        second.close();
        make("shared", "hello");
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
