// CRLFile: the MSB-first bit stream every binary roaming list and MMSS file is read and written
// through, over an in-memory image of the file; and Crc16, the CRC that seals a roaming list.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace Tarn {

class CRLManager;

// CRC-16/GENIBUS: polynomial 0x1021, preset 0xFFFF, no reflection, result complemented.
uint16_t Crc16(const uint8_t* buffer, size_t length);

class CRLFile {
public:
    CRLFile() = default;
    explicit CRLFile(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}

    // Loads the whole file (at most `maxBytes`); false with a reason when it cannot.
    bool Load(const std::filesystem::path& path, std::string& error,
              uint64_t maxBytes = 64ull * 1024 * 1024);
    // Writes the image to disk in one atomic step (temporary file, then rename).
    bool Save(const std::filesystem::path& path, std::string& error) const;

    // Byte-level file operations, as on a disk file: reads stop at the end, writes extend it.
    uint64_t GetLength() const { return bytes_.size(); }
    void SetLength(uint64_t length);
    uint64_t GetPosition() const { return pos_; }
    void Seek(uint64_t position) { pos_ = position; }
    void SeekToBegin() { pos_ = 0; }
    size_t Read(void* buffer, size_t count);
    void Write(const void* buffer, size_t count);

    const std::vector<uint8_t>& Bytes() const { return bytes_; }
    std::vector<uint8_t> TakeBytes() { return std::move(bytes_); }

    // Fields of 1..32 bits, most significant bit first, with the partly used byte carried between
    // calls (see the .cpp for the exact carrying rules). Every field of a list goes through these
    // two, so the common case is inline: a field that lies inside the image is read from, or laid
    // into, one window of bytes; the rest (widths beyond 32, reads past the end) take the bitwise
    // path, which gives the same results by construction.
    uint32_t ReadBits(int width) {
        const uint64_t span = offset_ + static_cast<unsigned>(width);
        if (width < 1 || width > 32 || pos_ + (span + 7) / 8 > bytes_.size())
            return ReadBitsSlow(width);
        const uint8_t* p = bytes_.data() + pos_;
        uint64_t window = 0;
        if (pos_ + 8 <= bytes_.size()) {
            std::memcpy(&window, p, 8);
            if constexpr (std::endian::native == std::endian::little)
                window = __builtin_bswap64(window);
        } else {
            for (size_t i = 0; i < 8; ++i)
                window = (window << 8) | (pos_ + i < bytes_.size() ? p[i] : 0u);
        }
        pos_ += span / 8;
        offset_ = static_cast<unsigned>(span % 8);
        return static_cast<uint32_t>((window << (span - static_cast<unsigned>(width))) >>
                                     (64 - width));
    }
    void WriteBits(int width, uint32_t value) {
        if (width < 1 || width > 32) return WriteBitsSlow(width, value);
        // The kept bits of the current byte, then the field, then zero bits to the byte's end.
        const unsigned span = offset_ + static_cast<unsigned>(width);
        const size_t count = (span + 7) / 8;
        const size_t at = static_cast<size_t>(pos_);
        if (at + count > bytes_.size()) Extend(at + count);
        uint8_t* p = bytes_.data() + at;
        const uint64_t field = width == 32 ? value : value & ((1u << width) - 1u);
        const uint64_t window =
            (static_cast<uint64_t>(p[0] & KeptBits(offset_)) << 32) | (field << (40 - span));
        for (size_t i = 0; i < count; ++i) p[i] = static_cast<uint8_t>(window >> (32 - 8 * i));
        pos_ += span / 8;
        offset_ = span % 8;
    }
    // Room for a stream of `bytes` without growing on the way.
    void Reserve(size_t bytes) { bytes_.reserve(bytes); }
    unsigned GetBitOffset() const { return offset_; }
    void SetBitOffset(unsigned offset) { offset_ = offset & 7u; }

    // Zero bits up to the next byte boundary of a stream of `totalBits`; returns the pad width.
    int PadToByte(uint64_t totalBits);

    // The manager that drives this file; records ask it for the version they are framed in.
    void SetManager(const CRLManager* manager) { manager_ = manager; }
    const CRLManager* GetManager() const { return manager_; }
    // 1..5 for IS-683A..IS-683E, or the version set with SetVersion; 0 with neither.
    int GetVersion() const;
    // Lets a file be framed for a version without a manager (MMSS files, tests).
    void SetVersion(int version) { version_ = version; }

private:
    // The leading bits of the current byte that a write keeps, at a bit offset of 0..7.
    static uint8_t KeptBits(unsigned offset) { return static_cast<uint8_t>(0xFF00u >> offset); }
    // Zero bytes up to `length`; appending one at a time is cheaper than a resize call per field.
    void Extend(size_t length) {
        if (length - bytes_.size() > 8) return bytes_.resize(length, 0);
        while (bytes_.size() < length) bytes_.push_back(0);
    }
    uint32_t ReadBitsSlow(int width);
    void WriteBitsSlow(int width, uint32_t value);

    std::vector<uint8_t> bytes_;
    uint64_t pos_ = 0;
    unsigned offset_ = 0;
    const CRLManager* manager_ = nullptr;
    int version_ = 0;
};

}  // namespace Tarn
