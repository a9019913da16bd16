// CRLFile: the MSB-first bit stream every binary roaming list and MMSS file is read and written
// through, over an in-memory image of the file; and Crc16, the CRC that seals a roaming list.
#pragma once

#include <cstddef>
#include <cstdint>
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
    // calls (see the .cpp for the exact carrying rules).
    uint32_t ReadBits(int width);
    void WriteBits(int width, uint32_t value);
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
    std::vector<uint8_t> bytes_;
    uint64_t pos_ = 0;
    unsigned offset_ = 0;
    const CRLManager* manager_ = nullptr;
    int version_ = 0;
};

}  // namespace Tarn
