#include "roaming_list/RLFile.h"

#include <array>
#include <cstring>

#include "foundation/AtomicFile.h"
#include "roaming_list/RLManager.h"

namespace Tarn {
namespace {

// kCrcTables[n][b]: the register after byte b, fed into an empty register, is followed by n zero
// bytes. With them eight bytes are folded in at once: the register is XORed into the first two
// (an MSB-first CRC's register is the next bytes' worth of pending input) and each of the eight
// looks up its own table, so no byte waits for the one before it as in the bytewise loop.
constexpr std::array<std::array<uint16_t, 256>, 8> MakeCrcTables() {
    std::array<std::array<uint16_t, 256>, 8> tables{};
    for (unsigned i = 0; i < 256; ++i) {
        uint16_t reg = static_cast<uint16_t>(i << 8);
        for (int step = 0; step < 8; ++step)
            reg = static_cast<uint16_t>((reg & 0x8000) ? (reg << 1) ^ 0x1021 : reg << 1);
        tables[0][i] = reg;
    }
    for (size_t n = 1; n < tables.size(); ++n)
        for (unsigned i = 0; i < 256; ++i) {
            const uint16_t prev = tables[n - 1][i];
            tables[n][i] = static_cast<uint16_t>((prev << 8) ^ tables[0][prev >> 8]);
        }
    return tables;
}

constexpr auto kCrcTables = MakeCrcTables();

}  // namespace

uint16_t Crc16(const uint8_t* buffer, size_t length) {
    const auto& t = kCrcTables;
    uint16_t reg = 0xFFFF;
    size_t i = 0;
    for (; length - i >= 8; i += 8) {
        const uint8_t* p = buffer + i;
        reg = static_cast<uint16_t>(
            t[7][(reg >> 8) ^ p[0]] ^ t[6][(reg & 0xFF) ^ p[1]] ^ t[5][p[2]] ^ t[4][p[3]] ^
            t[3][p[4]] ^ t[2][p[5]] ^ t[1][p[6]] ^ t[0][p[7]]);
    }
    for (; i < length; ++i)
        reg = static_cast<uint16_t>((reg << 8) ^ t[0][((reg >> 8) ^ buffer[i]) & 0xFF]);
    return static_cast<uint16_t>(reg ^ 0xFFFF);
}

bool CRLFile::Load(const std::filesystem::path& path, std::string& error, uint64_t maxBytes) {
    std::vector<uint8_t> bytes;
    if (!ReadWholeFile(path, bytes, error, maxBytes)) return false;
    bytes_ = std::move(bytes);
    pos_ = 0;
    offset_ = 0;
    return true;
}

bool CRLFile::Save(const std::filesystem::path& path, std::string& error) const {
    return WriteFileAtomically(path, bytes_, error);
}

void CRLFile::SetLength(uint64_t length) {
    bytes_.resize(static_cast<size_t>(length));
}

size_t CRLFile::Read(void* buffer, size_t count) {
    if (pos_ >= bytes_.size() || count == 0) return 0;
    size_t n = static_cast<size_t>(std::min<uint64_t>(count, bytes_.size() - pos_));
    std::memcpy(buffer, bytes_.data() + pos_, n);
    pos_ += n;
    return n;
}

void CRLFile::Write(const void* buffer, size_t count) {
    if (count == 0) return;
    // A write past the end fills the hole with zeros, as a disk file would.
    if (pos_ + count > bytes_.size()) bytes_.resize(static_cast<size_t>(pos_ + count), 0);
    std::memcpy(bytes_.data() + pos_, buffer, count);
    pos_ += count;
}

// Reading: a new byte is fetched at the first bit of a call and whenever the offset wraps to 0.
// When the field ends inside a byte, the position goes back to that byte so the next field
// continues in it. A byte past the end leaves the one-byte buffer as it was: 0 for the first
// byte of a call, the previous byte later in the same call. Truncation is caught by the size and
// CRC check before any parsing, so no error is raised here.
uint32_t CRLFile::ReadBitsSlow(int width) {
    if (width <= 0) return 0;
    unsigned offset = offset_;
    uint64_t remembered = pos_;
    uint8_t byte = 0;
    uint32_t value = 0;
    for (int i = 0; i < width; ++i) {
        if (offset == 0 || i == 0) {
            remembered = pos_;
            if (pos_ < bytes_.size()) byte = bytes_[static_cast<size_t>(pos_++)];
        }
        value = (value << 1) | ((byte >> (7 - offset)) & 1u);
        if (++offset == 8) offset = 0;
    }
    if (offset != 0) pos_ = remembered;
    offset_ = offset;
    return value;
}

// Writing: the byte under the position is read back and only its first `offset` bits are kept,
// so bits written by an earlier call into a shared byte survive. A finished byte is written at
// once; an unfinished one is written too and the position stays on it, so the image is always a
// valid prefix of the stream.
void CRLFile::WriteBitsSlow(int width, uint32_t value) {
    if (width < 1) return;
    unsigned offset = offset_;
    uint64_t remembered = pos_;
    uint8_t byte = 0;
    for (int i = 0; i < width; ++i) {
        int shift = width - 1 - i;
        unsigned bit = shift < 32 ? (value >> shift) & 1u : 0u;
        if (offset == 0 || i == 0) {
            remembered = pos_;
            byte = 0;
            if (pos_ < bytes_.size()) {
                byte = bytes_[static_cast<size_t>(pos_)] & KeptBits(offset);
                ++pos_;
            }
        }
        if (bit) byte |= static_cast<uint8_t>(0x80u >> offset);
        if (++offset == 8) {
            offset = 0;
            pos_ = remembered;
            Write(&byte, 1);
        }
    }
    if (offset != 0) {
        pos_ = remembered;
        Write(&byte, 1);
        pos_ = remembered;
    }
    offset_ = offset;
}

int CRLFile::PadToByte(uint64_t totalBits) {
    int pad = static_cast<int>((8 - totalBits % 8) % 8);
    WriteBits(pad, 0);
    return pad;
}

int CRLFile::GetVersion() const {
    if (manager_) return manager_->GetVersion();
    return version_;
}

}  // namespace Tarn
