#include "foundation/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>

namespace Tarn {
namespace fs = std::filesystem;

bool ReadWholeFile(const fs::path& path, std::vector<uint8_t>& bytes, std::string& error,
                   uint64_t maxBytes) {
    bytes.clear();
    std::error_code ec;
    if (!fs::exists(path, ec)) {
        error = "No such file: " + path.string();
        return false;
    }
    if (!fs::is_regular_file(path, ec)) {
        error = "Not a regular file: " + path.string();
        return false;
    }
    uint64_t size = fs::file_size(path, ec);
    if (ec) {
        error = "Cannot get the size of " + path.string() + ": " + ec.message();
        return false;
    }
    if (size > maxBytes) {
        error = "File too large (" + std::to_string(size) + " bytes): " + path.string();
        return false;
    }
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) {
        error = "Cannot open " + path.string() + ": " + std::strerror(errno);
        return false;
    }
    bytes.resize(static_cast<size_t>(size));
    size_t got = size ? std::fread(bytes.data(), 1, bytes.size(), f) : 0;
    bool failed = std::ferror(f) != 0;
    std::fclose(f);
    if (failed || got != bytes.size()) {
        error = "Cannot read " + path.string();
        bytes.clear();
        return false;
    }
    return true;
}

bool WriteFileAtomically(const fs::path& path, const std::vector<uint8_t>& bytes,
                         std::string& error) {
    fs::path dir = path.parent_path();
    if (dir.empty()) dir = ".";
    std::random_device rd;
    fs::path tmp;
    int fd = -1;
    for (int attempt = 0; attempt < 16 && fd < 0; ++attempt) {
        // Built by appending: GCC 12 at -O3 misreads the prepend of `"." + std::string&&` as
        // an overlapping copy (-Wrestrict).
        std::string name = ".";
        name += path.filename().string();
        name += ".tmp";
        name += std::to_string(rd() % 1000000);
        tmp = dir / name;
        fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (fd < 0 && errno != EEXIST) break;
    }
    if (fd < 0) {
        error = "Cannot create a file in " + dir.string() + ": " + std::strerror(errno);
        return false;
    }
    // Keep the permissions of the file we replace, so a save does not widen or narrow access.
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0) ::fchmod(fd, st.st_mode & 07777);
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0) {
            if (errno == EINTR) continue;
            error = "Cannot write " + path.string() + ": " + std::strerror(errno);
            ::close(fd);
            ::unlink(tmp.c_str());
            return false;
        }
        done += static_cast<size_t>(n);
    }
    if (::fsync(fd) != 0 || ::close(fd) != 0) {
        error = "Cannot write " + path.string() + ": " + std::strerror(errno);
        ::unlink(tmp.c_str());
        return false;
    }
    if (std::rename(tmp.c_str(), path.c_str()) != 0) {
        error = "Cannot replace " + path.string() + ": " + std::strerror(errno);
        ::unlink(tmp.c_str());
        return false;
    }
    return true;
}

bool WriteFileAtomically(const fs::path& path, const std::string& text, std::string& error) {
    return WriteFileAtomically(path, std::vector<uint8_t>(text.begin(), text.end()), error);
}

}  // namespace Tarn
