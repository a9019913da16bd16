#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

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

    fs::path dir_;
};

TEST_F(FileTest, ModeStringByAccessOptionsDispositionAndExistence) {
    const fs::path existing = make("there", "x");
    const fs::path missing = dir_ / "missing";
    const struct {
        int access;
        unsigned options;
        int disposition;
        bool exists;
        const char* mode;
    } cases[] = {
        {Access::Read, Options::Append, Disposition::TruncateExisting, true, "rb"},
        {Access::Write, Options::None, Disposition::OpenAlways, true, "wb"},
        {Access::Write, Options::Append, Disposition::OpenAlways, true, "ab"},
        {Access::ReadWrite, Options::Append, Disposition::TruncateExisting, true, "wb+"},
        {Access::ReadWrite, Options::Append, Disposition::OpenAlways, true, "ab+"},
        {Access::ReadWrite, Options::None, Disposition::OpenAlways, true, "rb+"},
        {Access::ReadWrite, Options::None, Disposition::OpenAlways, false, "wb+"},
        {Access::ReadWrite, Options::None, Disposition::CreateNew, false, "wb+"},
    };
    for (const auto& c : cases) {
        const fs::path& p = c.exists ? existing : missing;
        EXPECT_EQ(System::Io::buildModeString(p, c.access, c.options, c.disposition), c.mode)
            << c.access << " " << c.options << " " << c.disposition << " " << c.exists;
    }
    for (int access : {0, 4, -1})
        EXPECT_EQ(messageOf([&] { System::Io::buildModeString(existing, access, 0, 4); }),
                  "Illegal Open Mode");
}

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
        {"create always replaces (write)", Access::Write, Disposition::CreateAlways, true, "", ""},
        {"create always replaces (read/write)", Access::ReadWrite, Disposition::CreateAlways, true,
         "", ""},
        {"open existing refuses a missing file", Access::Read, Disposition::OpenExisting, false,
         "File: %p does not exist.", nullptr},
        {"open existing keeps the content", Access::ReadWrite, Disposition::OpenExisting, true, "",
         "hello"},
        {"open always creates", Access::ReadWrite, Disposition::OpenAlways, false, "", ""},
        {"open always keeps the content", Access::ReadWrite, Disposition::OpenAlways, true, "",
         "hello"},
        {"truncate existing refuses a missing file", Access::ReadWrite,
         Disposition::TruncateExisting, false, "File: %p does not exist.", nullptr},
        {"truncate existing empties", Access::ReadWrite, Disposition::TruncateExisting, true, "",
         ""},
        {"reading a missing file fails in the open", Access::Read, Disposition::OpenAlways, false,
         "Failed to Open File \"%p\": No such file or directory.", nullptr},
        {"an illegal access deletes nothing", 7, Disposition::CreateAlways, true,
         "Illegal Open Mode", "hello"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path p = dir_ / "target";
        fs::remove(p);
        if (c.preexisting) make("target", "hello");
        std::string expected = c.error;
        if (auto at = expected.find("%p"); at != std::string::npos)
            expected.replace(at, 2, p.string());

        File f;
        const std::string error =
            messageOf([&] { f.open(p, c.access, 0, c.disposition, Sharing::DenyNone); });
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

TEST_F(FileTest, EmptyPathPassesCreateNewButTheOpenFails) {
    File f;
    EXPECT_EQ(messageOf([&] {
                  f.open("", Access::ReadWrite, 0, Disposition::CreateNew, Sharing::DenyNone);
              }),
              std::string("Failed to Open File \"\": ") + Lang::errnoText(ENOENT));
    EXPECT_EQ(messageOf([&] {
                  f.open("", Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone);
              }),
              "File:  does not exist.");
    EXPECT_FALSE(f.isOpen());
}

TEST_F(FileTest, SecondOpenIsRefusedAndTheFirstStaysUsable) {
    const fs::path p = make("a", "abc");
    File f;
    f.open(p, Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone);
    EXPECT_EQ(messageOf([&] {
                  f.open(p, Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone);
              }),
              "File already open");
    char buffer[3] = {};
    EXPECT_EQ(f.read(buffer, 3), 3u);
    EXPECT_EQ(std::string(buffer, 3), "abc");
}

TEST_F(FileTest, AppendWritesAtTheEnd) {
    const fs::path p = make("log", "hello");
    File f;
    f.open(p, Access::ReadWrite, Options::Append, Disposition::OpenAlways, Sharing::DenyNone);
    f.seek(0, Origin::Begin);
    f.write("!", 1);
    f.close();
    EXPECT_EQ(contents(p), "hello!");
}

TEST_F(FileTest, ClosedFileAndNullBuffersAreRefused) {
    File f;
    char byte = 0;
    const struct {
        const char* message;
        std::function<void()> call;
    } closed[] = {
        {"file is not open", [&] { f.read(&byte, 1); }},
        {"file is not open", [&] { f.write(&byte, 1); }},
        {"file is not open", [&] { f.seek(0, Origin::Begin); }},
        {"file is not open", [&] { f.flush(); }},
        {"file is not open", [&] { (void)f.eof(); }},
    };
    for (const auto& c : closed) EXPECT_EQ(messageOf(c.call), c.message);
    EXPECT_NO_THROW(f.close());

    f.open(make("b", "x"), Access::ReadWrite, 0, Disposition::OpenExisting, Sharing::DenyNone);
    EXPECT_EQ(messageOf([&] { f.read(nullptr, 1); }), "read buffer is NULL");
    EXPECT_EQ(messageOf([&] { f.write(nullptr, 1); }), "write buffer is NULL");
}

TEST_F(FileTest, ReadingAWriteOnlyFileAndWritingAReadOnlyOneFailWithErrno) {
    const std::string badFile = Lang::errnoText(EBADF);
    File out;
    out.open(make("w", "data"), Access::Write, 0, Disposition::OpenExisting, Sharing::DenyNone);
    char buffer[4];
    EXPECT_EQ(messageOf([&] { out.read(buffer, 4); }), "fread failed: " + badFile);

    File in;
    in.open(make("r", "data"), Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone);
    EXPECT_EQ(messageOf([&] { in.write("x", 1); }), "fwrite failed: " + badFile);
}

TEST_F(FileTest, ShortReadAtTheEndIsNoErrorAndSetsEof) {
    File f;
    f.open(make("s", "abcde"), Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone);
    char buffer[8] = {};
    EXPECT_FALSE(f.eof());
    EXPECT_EQ(f.read(buffer, 8), 5u);
    EXPECT_TRUE(f.eof());
    EXPECT_EQ(f.read(buffer, 8), 0u);
    EXPECT_EQ(f.seek(1, Origin::Begin), 1);
    EXPECT_FALSE(f.eof());
}

TEST_F(FileTest, SeeksAreSixtyFourBitAndRefuseNegativePositions) {
    File f;
    f.open(make("k", "0123456789"), Access::ReadWrite, 0, Disposition::OpenExisting,
           Sharing::DenyNone);
    EXPECT_EQ(f.seek(-3, Origin::End), 7);
    EXPECT_EQ(f.seek(2, Origin::Current), 9);
    EXPECT_EQ(f.seek(5'000'000'000LL, Origin::Begin), 5'000'000'000LL);
    EXPECT_EQ(messageOf([&] { f.seek(-1, Origin::Begin); }), "seek failed");
    EXPECT_EQ(f.seek(0, Origin::Current), 5'000'000'000LL);  // a failed seek moves nothing
}

TEST_F(FileTest, AlternatingWritesAndReadsStayInStep) {
    const fs::path p = make("rw", "abcdef");
    File f;
    f.open(p, Access::ReadWrite, 0, Disposition::OpenAlways, Sharing::DenyNone);
    f.write("XY", 2);
    char buffer[2] = {};
    EXPECT_EQ(f.read(buffer, 2), 2u);
    EXPECT_EQ(std::string(buffer, 2), "cd");
    f.write("Z", 1);
    f.flush();
    EXPECT_EQ(contents(p), "XYcdZf");
}

TEST_F(FileTest, DirectoriesAreNotFiles) {
    File f;
    EXPECT_EQ(messageOf([&] {
                  f.open(dir_, Access::Read, 0, Disposition::OpenExisting, Sharing::DenyNone);
              }),
              "Failed to Open File \"" + dir_.string() + "\": " + Lang::errnoText(EACCES));
    EXPECT_EQ(messageOf([&] { System::FileSystem::getFileSize(dir_); }),
              "Failed to get size: Not a file");
    EXPECT_EQ(messageOf([&] { System::FileSystem::getFileSize(dir_ / "none"); }),
              "Failed to get size: Not a file");
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
        const std::string error = messageOf(
            [&] { second.open(p, Access::Write, 0, Disposition::OpenExisting, c.second); });
        EXPECT_EQ(second.isOpen(), c.secondOpens) << c.first << "/" << c.second << ": " << error;
        if (!c.secondOpens) {
            EXPECT_EQ(error.rfind("Failed to Open File \"" + p.string() + "\": ", 0), 0u) << error;
            EXPECT_EQ(contents(p), "hello");
        }
        second.close();
        make("shared", "hello");
    }
}

TEST_F(FileTest, FileSystemSizeAndDelete) {
    const fs::path p = make("sized", std::string(1234, 'z'));
    EXPECT_EQ(System::FileSystem::getFileSize(p), 1234u);
    EXPECT_TRUE(System::FileSystem::exists(p));
    System::FileSystem::deleteFile(p);
    EXPECT_FALSE(System::FileSystem::exists(p));
    EXPECT_EQ(messageOf([&] { System::FileSystem::deleteFile(p); }),
              "Failed to Delete File \"" + p.string() + "\": " + Lang::errnoText(ENOENT));
}

}  // namespace
