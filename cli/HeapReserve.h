// Readies the process heap, before a verb runs, for the structures it is about to build.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn::Cli {

// Makes the next `bytes` of heap present at once instead of page by page as they are first
// touched, and keeps blocks of any size on that heap. A no-op where the system cannot do it.
void ReserveHeap(std::size_t bytes);

// What a verb working on `inputs` (the files its arguments name; anything else is skipped) is
// expected to need: `perInputByte` times their total size, counted as binary lists (a text form or
// JSON counts for less), within bounds. A verb's own figure is its measured peak on large lists,
// rounded down: a page reserved and never used costs a few microseconds, one left to fault about
// five times that.
std::size_t ExpectedHeap(const std::vector<std::string>& inputs, std::size_t perInputByte);

// The figure of verbs that hold one list and print a little about it.
inline constexpr std::size_t kHeapPerInputByte = 10;

}  // namespace Tarn::Cli
