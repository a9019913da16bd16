#include "roaming_list/ConcatPrl.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <memory>
#include <system_error>
#include <vector>

#include "foundation/AtomicFile.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"

namespace Tarn {
namespace fs = std::filesystem;

namespace {

// A list's size field is 16 bits and a reader accepts a 5-byte prefix in front of it, so no
// input of a join can be longer; a concatenated file holds two of them and its CRC.
constexpr uint64_t kMaxListFile = 0xFFFF + 5;
constexpr uint64_t kMaxConcatFile = 2 * kMaxListFile + 2;

uint16_t Be16(const uint8_t* p) { return static_cast<uint16_t>((p[0] << 8) | p[1]); }

enum class ReadOutcome { Ok, OpenFailed, TooLarge, ReadFailed };

struct FileCloser {
    void operator()(FILE* f) const { std::fclose(f); }
};

ReadOutcome ReadFileBytes(const fs::path& path, uint64_t maxBytes, std::vector<uint8_t>& bytes) {
    bytes.clear();
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) return ReadOutcome::OpenFailed;
    std::unique_ptr<FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
    if (!file) return ReadOutcome::OpenFailed;
    const uint64_t size = fs::file_size(path, ec);
    if (ec) return ReadOutcome::ReadFailed;
    if (size > maxBytes) return ReadOutcome::TooLarge;
    bytes.resize(static_cast<size_t>(size));
    const size_t got = size ? std::fread(bytes.data(), 1, bytes.size(), file.get()) : 0;
    if (got != bytes.size()) return ReadOutcome::ReadFailed;
    return ReadOutcome::Ok;
}

bool HasTextExtension(const fs::path& path) {
    std::string ext = path.extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext == ".txt";
}

// Reads one join input whole and makes sure some version of the binary format reads it.
std::vector<uint8_t> ReadJoinInput(const fs::path& path, const char* openText,
                                   const char* invalidText, const char* readText) {
    std::vector<uint8_t> bytes;
    switch (ReadFileBytes(path, kMaxListFile, bytes)) {
        case ReadOutcome::OpenFailed: throw ConcatPrlException(openText);
        case ReadOutcome::TooLarge: throw ConcatPrlException(invalidText);
        case ReadOutcome::ReadFailed: throw ConcatPrlException(readText);
        case ReadOutcome::Ok: break;
    }
    // The editor opens a ".txt" path through the text form, and a text list is no binary list.
    if (HasTextExtension(path)) throw ConcatPrlException(invalidText);
    CRLFile file(bytes);
    if (!DetectVersion(file).manager) throw ConcatPrlException(invalidText);
    return bytes;
}

void WriteOutput(const fs::path& path, const std::vector<uint8_t>& bytes, const char* failText) {
    std::string error;
    if (!WriteFileAtomically(path, bytes, error)) throw ConcatPrlException(failText);
}

}  // namespace

bool CheckConcatenatedPrl(const uint8_t* bytes, size_t length, size_t& firstLength) {
    if (!bytes || length <= 2) return false;
    if (Crc16(bytes, length - 2) != Be16(bytes + length - 2)) return false;
    const size_t s1 = Be16(bytes);
    // Each list needs at least its two CRC bytes, and the second list's size field must lie
    // inside the file before the outer CRC.
    if (s1 < 2 || s1 + 4 > length) return false;
    const size_t s2 = Be16(bytes + s1);
    if (s1 + s2 + 2 != length || s2 < 2) return false;
    if (Crc16(bytes, s1 - 2) != Be16(bytes + s1 - 2)) return false;
    if (Crc16(bytes + s1, s2 - 2) != Be16(bytes + s1 + s2 - 2)) return false;
    firstLength = s1;
    return true;
}

bool IsConcatenatedPrl(const fs::path& path) {
    std::vector<uint8_t> bytes;
    if (ReadFileBytes(path, kMaxConcatFile, bytes) != ReadOutcome::Ok) return false;
    size_t first = 0;
    return CheckConcatenatedPrl(bytes.data(), bytes.size(), first);
}

void JoinPrl(const fs::path& firstPath, const fs::path& secondPath, const fs::path& outputPath) {
    std::vector<uint8_t> joined = ReadJoinInput(firstPath, ConcatPrlText::OpenFirst,
                                                ConcatPrlText::InvalidFirst, ConcatPrlText::ReadFirst);
    const std::vector<uint8_t> second =
        ReadJoinInput(secondPath, ConcatPrlText::OpenSecond, ConcatPrlText::InvalidSecond,
                      ConcatPrlText::ReadSecond);
    joined.insert(joined.end(), second.begin(), second.end());
    const uint16_t crc = Crc16(joined.data(), joined.size());
    joined.push_back(static_cast<uint8_t>(crc >> 8));
    joined.push_back(static_cast<uint8_t>(crc & 0xFF));
    WriteOutput(outputPath, joined, ConcatPrlText::WriteOutput);
}

void SplitPrl(const fs::path& inputPath, const fs::path& firstOutputPath,
              const fs::path& secondOutputPath) {
    std::vector<uint8_t> bytes;
    switch (ReadFileBytes(inputPath, kMaxConcatFile, bytes)) {
        case ReadOutcome::OpenFailed: throw ConcatPrlException(ConcatPrlText::OpenInput);
        case ReadOutcome::TooLarge: throw ConcatPrlException(ConcatPrlText::InvalidInput);
        case ReadOutcome::ReadFailed: throw ConcatPrlException(ConcatPrlText::ReadInput);
        case ReadOutcome::Ok: break;
    }
    size_t s1 = 0;
    if (!CheckConcatenatedPrl(bytes.data(), bytes.size(), s1))
        throw ConcatPrlException(ConcatPrlText::InvalidInput);
    const auto split = bytes.begin() + static_cast<std::ptrdiff_t>(s1);
    WriteOutput(firstOutputPath, std::vector<uint8_t>(bytes.begin(), split),
                ConcatPrlText::WriteFirstOutput);
    WriteOutput(secondOutputPath, std::vector<uint8_t>(split, bytes.end() - 2),
                ConcatPrlText::WriteSecondOutput);
}

}  // namespace Tarn
