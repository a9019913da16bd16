// File-system helpers under System::Io::File: existence, size and deletion of single files.
#pragma once

#include <cstdint>
#include <filesystem>

namespace System::FileSystem {

// True when the system reports attributes for `path`: any kind of entry, a dangling symbolic link
// included (so "create new" never writes through a link someone left in the way).
bool exists(const std::filesystem::path& path);

// The size of a regular file (links followed). Anything else is refused with
// Lang::Exception "Failed to get size: Not a file".
uint64_t getFileSize(const std::filesystem::path& path);

// Deletes one file; Lang::ErrnoException "Failed to Delete File \"<path>\"" when it cannot.
void deleteFile(const std::filesystem::path& path);

}  // namespace System::FileSystem
