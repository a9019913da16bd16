#include "cli/HeapReserve.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <sys/mman.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "formats/ContentSniff.h"

// Linux 5.14 and later; older kernels refuse the advice and the heap grows page by page as before.
#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23
#endif

namespace Tarn::Cli {
namespace {

constexpr std::size_t kPage = 4096;
// Beyond the cap the heap grows as it would anyway.
constexpr std::size_t kMaxReserve = std::size_t{32} << 20;
// Below this the faults saved do not pay for the calls.
constexpr std::size_t kMinReserve = std::size_t{64} << 10;
// Enough of a file's start to tell its form.
constexpr std::size_t kSniffBytes = 512;

// A verb's figure is per byte of a binary file. The same list as a text form is about six times
// as many bytes, as JSON some sixty; so many fewer bytes of heap per byte of file.
std::size_t FormDivisor(const char* path) {
    std::vector<uint8_t> head(kSniffBytes);
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) return 1;
    const ssize_t got = ::read(fd, head.data(), head.size());
    ::close(fd);
    head.resize(got > 0 ? static_cast<size_t>(got) : 0);
    switch (SniffContent(head)) {
        case ContentForm::Json: return 60;
        case ContentForm::RoamingListText: return 6;
        case ContentForm::Binary: break;
    }
    return 1;
}

}  // namespace

std::size_t ExpectedHeap(const std::vector<std::string>& inputs, std::size_t perInputByte) {
    std::size_t total = 0;
    for (const auto& path : inputs) {
        struct stat st {};
        if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) continue;
        const auto size = static_cast<std::size_t>(std::min<off_t>(st.st_size, kMaxReserve));
        total += size * perInputByte / FormDivisor(path.c_str());
    }
    return std::min(total, kMaxReserve);
}

void ReserveHeap(std::size_t bytes) {
    if (bytes < kMinReserve) return;
    // Every first touch of a heap page is a fault of its own, and on a virtual machine a fault
    // costs as much as decoding thousands of records; populating the pages in one call costs a
    // fraction of that per page. The block is carved from the main heap (not mapped apart, as
    // large blocks otherwise are) and, once freed, stays there for the verb's own allocations:
    // the output text and file images included, which would otherwise get fresh mappings.
    // A C library that will not keep blocks this large on the heap would map the reserve apart and
    // unmap it on free, wasting it.
    if (mallopt(M_MMAP_THRESHOLD, static_cast<int>(kMaxReserve * 2)) == 0) return;
    mallopt(M_TRIM_THRESHOLD, static_cast<int>(kMaxReserve * 4));
    void* block = std::malloc(bytes);
    if (!block) return;
    const auto begin = (reinterpret_cast<std::uintptr_t>(block) + kPage - 1) & ~(kPage - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(block) + bytes) & ~(kPage - 1);
    if (end > begin)
        ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_POPULATE_WRITE);
    std::free(block);
}

}  // namespace Tarn::Cli
