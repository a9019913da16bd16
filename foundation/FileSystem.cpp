#include "foundation/FileSystem.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/Exception.h"

namespace System::FileSystem {

bool exists(const std::filesystem::path& path) {
    struct stat info {};
    return !path.empty() && ::lstat(path.c_str(), &info) == 0;
}

uint64_t getFileSize(const std::filesystem::path& path) {
    struct stat info {};
    if (path.empty() || ::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode))
        LANG_THROW(Lang::Exception, "Failed to get size: Not a file");
    return static_cast<uint64_t>(info.st_size);
}

void deleteFile(const std::filesystem::path& path) {
    if (::unlink(path.c_str()) != 0) {
        const int error = errno;
        LANG_THROW(Lang::ErrnoException, "Failed to Delete File \"" + path.string() + "\"", error);
    }
}

}  // namespace System::FileSystem
