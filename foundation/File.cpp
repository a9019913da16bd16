#include "foundation/File.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/Exception.h"
#include "foundation/FileSystem.h"

namespace System::Io {

static_assert(sizeof(off_t) >= 8, "System::Io::File needs 64-bit file offsets");

void verifyOpenRequirements(const std::filesystem::path& path, int disposition) {
    switch (disposition) {
        case Disposition::CreateNew:
            if (!path.empty() && FileSystem::exists(path))
                LANG_THROW(Lang::Exception, "File: " + path.string() + " already exists.");
            break;
        case Disposition::CreateAlways:
            if (FileSystem::exists(path)) FileSystem::deleteFile(path);
            break;
        case Disposition::OpenExisting:
        case Disposition::TruncateExisting:
            if (path.empty() || !FileSystem::exists(path))
                LANG_THROW(Lang::Exception, "File: " + path.string() + " does not exist.");
            break;
        default:
            break;
    }
}

std::string buildModeString(const std::filesystem::path& path, int access, unsigned options,
                            int disposition) {
    const bool append = (options & Options::Append) != 0;
    switch (access) {
        case Access::Read:
            return "rb";
        case Access::Write:
            return append ? "ab" : "wb";
        case Access::ReadWrite:
            if (disposition == Disposition::TruncateExisting) return "wb+";
            if (append) return "ab+";
            return FileSystem::exists(path) ? "rb+" : "wb+";
        default:
            LANG_THROW(Lang::Exception, "Illegal Open Mode");
    }
}

void File::Closer::operator()(std::FILE* stream) const {
    if (stream) std::fclose(stream);
}

File::File() = default;

File::~File() = default;

void File::open(const std::filesystem::path& path, int access, unsigned options, int disposition,
                int sharing) {
    if (stream_) LANG_THROW(Lang::Exception, "File already open");
    // "Create always" deletes before the mode is known; a bad access value must not cost the
    // caller the file it named, so it is refused before anything is touched.
    if (disposition == Disposition::CreateAlways &&
        (access < Access::Read || access > Access::ReadWrite))
        buildModeString(path, access, options, disposition);
    verifyOpenRequirements(path, disposition);
    const std::string mode = buildModeString(path, access, options, disposition);

    // The stream is opened in steps (descriptor, lock, truncation, stdio) so that a file another
    // holder has locked is refused before a "w" mode has emptied it.
    const bool update = mode.find('+') != std::string::npos;
    int flags = update ? O_RDWR : (mode[0] == 'r' ? O_RDONLY : O_WRONLY);
    if (mode[0] == 'w') flags |= O_CREAT;
    if (mode[0] == 'a') flags |= O_CREAT | O_APPEND;
    // The existence check above and the creation are two steps; O_EXCL closes the gap between.
    if (mode[0] != 'r' && disposition == Disposition::CreateNew) flags |= O_EXCL;

    int fd = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
    auto fail = [&](int error) {
        if (fd >= 0) ::close(fd);
        LANG_THROW(Lang::ErrnoException, "Failed to Open File \"" + path.string() + "\"", error);
    };
    if (fd < 0) fail(errno);

    struct stat info {};
    if (::fstat(fd, &info) != 0) fail(errno);
    // A directory is not a byte stream. Users of this library know that refusal as "permission
    // denied", whichever way the system would put it.
    if (S_ISDIR(info.st_mode)) fail(EACCES);

    if (sharing != Sharing::DenyNone) {
        const int lock = sharing == Sharing::DenyWrite ? LOCK_SH : LOCK_EX;
        if (::flock(fd, lock | LOCK_NB) != 0) fail(errno);
    }
    if (mode[0] == 'w' && ::ftruncate(fd, 0) != 0) fail(errno);

    std::FILE* stream = ::fdopen(fd, mode.c_str());
    if (stream == nullptr) fail(errno);
    stream_.reset(stream);
    path_ = path;
    lastOp_ = LastOp::None;
}

void File::switchTo(LastOp op) {
    if (lastOp_ != LastOp::None && lastOp_ != op) ::fseeko(stream_.get(), 0, SEEK_CUR);
    lastOp_ = op;
}

size_t File::read(void* buffer, size_t count) {
    if (!stream_) LANG_THROW(Lang::Exception, "file is not open");
    if (buffer == nullptr) LANG_THROW(Lang::Exception, "read buffer is NULL");
    if (count == 0) return 0;
    switchTo(LastOp::Read);
    errno = 0;
    const size_t got = std::fread(buffer, 1, count, stream_.get());
    if (got == 0 && std::ferror(stream_.get())) {
        const int error = errno;
        LANG_THROW(Lang::ErrnoException, "fread failed", error);
    }
    return got;
}

size_t File::write(const void* buffer, size_t count) {
    if (!stream_) LANG_THROW(Lang::Exception, "file is not open");
    if (buffer == nullptr) LANG_THROW(Lang::Exception, "write buffer is NULL");
    if (count == 0) return 0;
    switchTo(LastOp::Write);
    errno = 0;
    const size_t put = std::fwrite(buffer, 1, count, stream_.get());
    if (put == 0 && std::ferror(stream_.get())) {
        const int error = errno;
        LANG_THROW(Lang::ErrnoException, "fwrite failed", error);
    }
    return put;
}

int64_t File::seek(int64_t offset, Origin origin) {
    if (!stream_) LANG_THROW(Lang::Exception, "file is not open");
    const int whence = origin == Origin::Begin     ? SEEK_SET
                       : origin == Origin::Current ? SEEK_CUR
                                                   : SEEK_END;
    if (::fseeko(stream_.get(), static_cast<off_t>(offset), whence) != 0)
        LANG_THROW(Lang::Exception, "seek failed");
    lastOp_ = LastOp::None;
    const off_t position = ::ftello(stream_.get());
    if (position < 0) {
        const int error = errno;
        LANG_THROW(Lang::ErrnoException, "failed to get file position", error);
    }
    return static_cast<int64_t>(position);
}

void File::flush() {
    if (!stream_) LANG_THROW(Lang::Exception, "file is not open");
    if (std::fflush(stream_.get()) != 0) LANG_THROW(Lang::Exception, "fflush failed");
}

bool File::eof() const {
    if (!stream_) LANG_THROW(Lang::Exception, "file is not open");
    return std::feof(stream_.get()) != 0;
}

void File::close() {
    if (!stream_) return;
    std::FILE* stream = stream_.release();
    lastOp_ = LastOp::None;
    if (std::fclose(stream) != 0) {
        const int error = errno;
        LANG_THROW(Lang::ErrnoException, "fclose failed", error);
    }
}

}  // namespace System::Io
