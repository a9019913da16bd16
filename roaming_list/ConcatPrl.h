// Concatenated roaming lists: two binary lists back to back, sealed by a CRC over both. Join builds
// one from two list files, split takes one apart; both copy bytes exactly as they are on disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <string>

namespace Tarn {

// The failure of a join or a split; what() is the text the join and split wizards show.
class ConcatPrlException : public std::exception {
public:
    explicit ConcatPrlException(std::string message) : message_(std::move(message)) {}
    const char* what() const noexcept override { return message_.c_str(); }
    const std::string& Message() const { return message_; }

private:
    std::string message_;
};

// The structure check on a whole file image of `length` bytes: outer CRC, two plain lists whose
// size fields add up to the file, each with its own good CRC. Stores the first list's length in
// `firstLength` on success and leaves it untouched otherwise.
bool CheckConcatenatedPrl(const uint8_t* bytes, size_t length, size_t& firstLength);

// True when the file can be read whole and passes the structure check; never throws.
bool IsConcatenatedPrl(const std::filesystem::path& path);

// Writes `outputPath` (created or replaced) holding the first file's bytes, the second file's
// bytes and the CRC of both. Each input must be a binary roaming list that some version reads; a
// ".txt" path is always refused, as the editor reads such a file as the text form. Throws
// ConcatPrlException. The caller refuses equal input paths, not this function.
void JoinPrl(const std::filesystem::path& firstPath, const std::filesystem::path& secondPath,
             const std::filesystem::path& outputPath);

// Writes the two lists of a concatenated file to the two outputs (created or replaced); the outer
// CRC is dropped. Throws ConcatPrlException. A first output written before a failure stays.
void SplitPrl(const std::filesystem::path& inputPath, const std::filesystem::path& firstOutputPath,
              const std::filesystem::path& secondOutputPath);

// Texts of the failures; the first nine are what the wizards show. The "writing" texts cover
// an output that cannot be written, which the wizards would otherwise pass over in silence.
namespace ConcatPrlText {
inline constexpr const char* OpenFirst = "Error opening first input file.";
inline constexpr const char* InvalidFirst = "First input file is not a valid roaming list file.";
inline constexpr const char* OpenSecond = "Error opening second input file.";
inline constexpr const char* InvalidSecond = "Second input file is not a valid roaming list file.";
inline constexpr const char* ReadFirst = "Error reading first input file.";
inline constexpr const char* ReadSecond = "Error reading second input file.";
inline constexpr const char* OpenInput = "Error opening input file.";
inline constexpr const char* ReadInput = "Error reading input file.";
inline constexpr const char* InvalidInput = "Input file is not a valid Concatenated PRL file.";
inline constexpr const char* WriteOutput = "Error writing output file.";
inline constexpr const char* WriteFirstOutput = "Error writing first output file.";
inline constexpr const char* WriteSecondOutput = "Error writing second output file.";
}  // namespace ConcatPrlText

}  // namespace Tarn
