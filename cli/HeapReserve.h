// Readies the process heap, before a verb runs, for the structures it is about to build.
#pragma once

#include <cstddef>

namespace Tarn::Cli {

// Makes the next `bytes` of heap present at once instead of page by page as they are first
// touched, and keeps blocks of any size on that heap. A no-op where the system cannot do it.
void ReserveHeap(std::size_t bytes);

// What a verb working on the files named in argv[first..argc) is expected to need: a multiple of
// their total size, within bounds.
std::size_t ExpectedHeap(int argc, char** argv, int first);

}  // namespace Tarn::Cli
