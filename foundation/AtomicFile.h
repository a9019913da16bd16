// Whole-file reads with a size cap, and writes that never leave a half-written file behind.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Tarn {

// Reads the whole file. Fails (returning false with a reason) when it cannot be opened, is not a
// regular file, or is larger than `maxBytes`: no reader of ours trusts a file's size blindly.
bool ReadWholeFile(const std::filesystem::path& path, std::vector<uint8_t>& bytes,
                   std::string& error, uint64_t maxBytes = 64ull * 1024 * 1024);

// Writes `bytes` to a temporary file beside `path`, flushes it to disk and renames it over
// `path`. Either the old file or the complete new one stands afterwards. Returns false with a
// reason on failure; the temporary file is removed then.
bool WriteFileAtomically(const std::filesystem::path& path, const std::vector<uint8_t>& bytes,
                         std::string& error);
bool WriteFileAtomically(const std::filesystem::path& path, const std::string& text,
                         std::string& error);

}  // namespace Tarn
