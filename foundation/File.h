// System::Io::File: the byte-stream file the newer file code reads and writes through, with
// creation dispositions, sharing modes, 64-bit seeks and a fixed text for every failure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace System::Io {

// Open parameters. They stay plain integers because callers pass stored numbers through and an
// out-of-range access must reach open() to be refused there ("Illegal Open Mode").
struct Access {
    enum : int { Read = 1, Write = 2, ReadWrite = 3 };
};
struct Options {
    enum : unsigned { None = 0, Append = 1 };
};
struct Disposition {
    enum : int {
        CreateNew = 1,
        CreateAlways = 2,
        OpenExisting = 3,
        OpenAlways = 4,
        TruncateExisting = 5
    };
};
// Any value other than the three named ones denies both reading and writing.
struct Sharing {
    enum : int { DenyReadWrite = 0, DenyWrite = 1, DenyRead = 2, DenyNone = 3 };
};
enum class Origin { Begin, Current, End };

// Refuses what the disposition forbids and deletes what "create always" replaces:
//   create new: an existing, non-empty path -> "File: <path> already exists."
//   open existing, truncate existing: an empty or missing path -> "File: <path> does not exist."
// An empty path passes "create new" on purpose; the open itself then fails with the errno.
void verifyOpenRequirements(const std::filesystem::path& path, int disposition);

// The stdio mode for the open: "rb"; "ab"/"wb"; "wb+" (truncate existing), "ab+" (append),
// else "rb+" when the file exists and "wb+" when it does not. Other access values throw
// "Illegal Open Mode".
std::string buildModeString(const std::filesystem::path& path, int access, unsigned options,
                            int disposition);

class BasicStream {
public:
    virtual ~BasicStream() = default;
    virtual size_t read(void* buffer, size_t count) = 0;
    virtual size_t write(const void* buffer, size_t count) = 0;
    virtual int64_t seek(int64_t offset, Origin origin) = 0;
    virtual void flush() = 0;
    virtual bool eof() const = 0;
    virtual void close() = 0;
};

// Every failure is a Lang::Exception (or Lang::ErrnoException where the system said why) thrown
// after its trace record; a failed open leaves the file closed.
//
// Sharing is enforced with advisory whole-file locks, taken without waiting: "deny none" takes
// none, "deny write" a shared lock, "deny read" and "deny read and write" an exclusive one. Two
// opens that both ask to deny something therefore exclude each other as far as the lock kinds
// conflict, in this process or any other that uses this class; programs that take no locks are
// not kept out. A refused lock fails the open like any other open failure.
class File : public BasicStream {
public:
    File();
    ~File() override;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // "File already open" when a stream is open; then the disposition check, the mode, the open.
    void open(const std::filesystem::path& path, int access, unsigned options, int disposition,
              int sharing);

    // Returns the count read; a short count at the end is no error.
    size_t read(void* buffer, size_t count) override;
    // Returns the count written; only a write that wrote nothing and left an error is refused.
    size_t write(const void* buffer, size_t count) override;
    // Returns the new position from the start of the file.
    int64_t seek(int64_t offset, Origin origin) override;
    void flush() override;
    bool eof() const override;
    // Closing a closed file does nothing. A failure to flush what was buffered is reported, but
    // the file is closed either way.
    void close() override;

    bool isOpen() const { return stream_ != nullptr; }
    const std::filesystem::path& path() const { return path_; }

private:
    struct Closer {
        void operator()(std::FILE* stream) const;
    };
    // stdio needs a positioning call between a write and a read in either order.
    enum class LastOp { None, Read, Write };
    void switchTo(LastOp op);

    std::filesystem::path path_;
    std::unique_ptr<std::FILE, Closer> stream_;
    LastOp lastOp_ = LastOp::None;
};

}  // namespace System::Io
