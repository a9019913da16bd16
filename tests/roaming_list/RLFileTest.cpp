#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "roaming_list/RLFile.h"

namespace Tarn {
namespace {

TEST(Crc16, GenibusCheckValueAndEmptyInput) {
    const std::string check = "123456789";
    EXPECT_EQ(Crc16(reinterpret_cast<const uint8_t*>(check.data()), check.size()), 0xD64E);
    EXPECT_EQ(Crc16(nullptr, 0), 0x0000);
}

// Eight bytes are folded in at a time and the rest one by one: every length around those steps, at
// every alignment, must agree with the CRC computed bit by bit.
TEST(Crc16, AgreesWithBitwiseAtEveryLengthAndAlignment) {
    const auto bitwise = [](const uint8_t* p, size_t n) {
        uint16_t reg = 0xFFFF;
        for (size_t i = 0; i < n; ++i) {
            reg = static_cast<uint16_t>(reg ^ (p[i] << 8));
            for (int bit = 0; bit < 8; ++bit)
                reg = static_cast<uint16_t>((reg & 0x8000) ? (reg << 1) ^ 0x1021 : reg << 1);
        }
        return static_cast<uint16_t>(reg ^ 0xFFFF);
    };
    std::mt19937 random(1683);
    std::vector<uint8_t> bytes(200);
    for (auto& b : bytes) b = static_cast<uint8_t>(random());
    for (size_t offset = 0; offset < 8; ++offset)
        for (size_t length = 0; length + offset <= bytes.size(); ++length)
            ASSERT_EQ(Crc16(bytes.data() + offset, length), bitwise(bytes.data() + offset, length))
                << "offset " << offset << ", length " << length;
}

struct Field {
    int width;
    uint32_t value;
};

struct BitCase {
    const char* name;
    std::vector<Field> fields;
    std::vector<uint8_t> bytes;
};

// Fields written in order from a fresh file give exactly these bytes, and read back the same.
TEST(CRLFile, FieldsPackMostSignificantBitFirstAcrossBytes) {
    const std::vector<BitCase> cases = {
        {"3+5 bits share one byte", {{3, 0b101}, {5, 0b00001}}, {0xA1}},
        {"16 bits big-endian", {{16, 0x1234}}, {0x12, 0x34}},
        {"9 bits from offset 7", {{7, 0}, {9, 0x1FF}}, {0x01, 0xFF}},
        {"32-bit field off a boundary", {{4, 0xF}, {32, 0x12345678}, {4, 0xA}},
         {0xF1, 0x23, 0x45, 0x67, 0x8A}},
        {"single bits", {{1, 1}, {1, 0}, {1, 1}, {1, 1}, {4, 0}}, {0xB0}},
        {"partial last byte stays on disk", {{12, 0xABC}}, {0xAB, 0xC0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CRLFile out;
        for (const auto& f : c.fields) out.WriteBits(f.width, f.value);
        EXPECT_EQ(out.Bytes(), c.bytes);

        CRLFile in(c.bytes);
        for (const auto& f : c.fields) EXPECT_EQ(in.ReadBits(f.width), f.value);
    }
}

// The carrying rules one bit at a time, as the stream is documented: the model the whole-window
// reads and writes must agree with wherever a field lands, the last bytes of an image included.
struct BitModel {
    std::vector<uint8_t> bytes;
    uint64_t pos = 0;
    unsigned offset = 0;

    uint32_t Read(int width) {
        uint64_t remembered = pos;
        uint8_t byte = 0;
        uint32_t value = 0;
        for (int i = 0; i < width; ++i) {
            if (offset == 0 || i == 0) {
                remembered = pos;
                if (pos < bytes.size()) byte = bytes[pos++];
            }
            value = (value << 1) | ((byte >> (7 - offset)) & 1u);
            offset = (offset + 1) % 8;
        }
        if (offset != 0) pos = remembered;
        return value;
    }
    void Write(int width, uint32_t value) {
        for (int i = 0; i < width; ++i) {
            if (pos >= bytes.size()) bytes.resize(pos + 1, 0);
            const uint8_t mask = static_cast<uint8_t>(0x80u >> offset);
            // The rest of the byte after the first bit written into it is cleared.
            if (i == 0 || offset == 0) bytes[pos] &= static_cast<uint8_t>(0xFF00u >> offset);
            if ((value >> (width - 1 - i)) & 1u) bytes[pos] |= mask;
            if (++offset == 8) offset = 0, ++pos;
        }
    }
};

TEST(CRLFile, EveryFieldAgreesWithTheBitwiseRules) {
    std::mt19937 random(20261123);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        const size_t size = random() % 12;
        std::vector<uint8_t> image(size);
        for (auto& b : image) b = static_cast<uint8_t>(random());
        CRLFile file(image);
        BitModel model{image};
        for (int step = 0; step < 40; ++step) {
            const int width = 1 + static_cast<int>(random() % 32);
            if (random() % 4 == 0) {
                // Anywhere in the image or just past it, at any bit.
                const uint64_t at = random() % (model.bytes.size() + 2);
                const unsigned bit = random() % 8;
                file.Seek(at), file.SetBitOffset(bit);
                model.pos = at, model.offset = bit;
            }
            if (random() % 2 == 0) {
                ASSERT_EQ(file.ReadBits(width), model.Read(width)) << "width " << width;
            } else {
                const uint32_t value = static_cast<uint32_t>(random());
                file.WriteBits(width, value);
                model.Write(width, value);
                ASSERT_EQ(file.Bytes(), model.bytes) << "width " << width;
            }
            ASSERT_EQ(file.GetPosition(), model.pos);
            ASSERT_EQ(file.GetBitOffset(), model.offset);
        }
    }
}

TEST(CRLFile, NineBitFieldAtOffsetSevenEndsOnBoundary) {
    CRLFile in(std::vector<uint8_t>{0x01, 0xFF, 0x55});
    EXPECT_EQ(in.ReadBits(7), 0u);
    EXPECT_EQ(in.GetBitOffset(), 7u);
    EXPECT_EQ(in.GetPosition(), 0u);  // still inside the first byte
    EXPECT_EQ(in.ReadBits(9), 0x1FFu);
    EXPECT_EQ(in.GetBitOffset(), 0u);
    EXPECT_EQ(in.GetPosition(), 2u);
    EXPECT_EQ(in.ReadBits(8), 0x55u);
}

TEST(CRLFile, WritingIntoSharedByteKeepsEarlierBits) {
    CRLFile f;
    f.WriteBits(3, 0b111);
    EXPECT_EQ(f.GetLength(), 1u);  // the partial byte is already there
    EXPECT_EQ(f.GetPosition(), 0u);
    f.WriteBits(2, 0b01);
    f.WriteBits(3, 0b011);
    EXPECT_EQ(f.Bytes(), (std::vector<uint8_t>{0xEB}));
    EXPECT_EQ(f.GetPosition(), 1u);
}

TEST(CRLFile, ZeroWidthDoesNothingAndPastEndReadsZero) {
    CRLFile f(std::vector<uint8_t>{0xFF});
    EXPECT_EQ(f.ReadBits(0), 0u);
    EXPECT_EQ(f.ReadBits(-3), 0u);
    f.WriteBits(0, 1);
    EXPECT_EQ(f.Bytes(), (std::vector<uint8_t>{0xFF}));
    EXPECT_EQ(f.ReadBits(8), 0xFFu);
    EXPECT_EQ(f.ReadBits(8), 0u);  // nothing left: the one-byte buffer starts at 0
}

TEST(CRLFile, PaddingReachesTheNextByteBoundary) {
    struct {
        uint64_t bits;
        int pad;
    } cases[] = {{88, 0}, {90, 6}, {1, 7}, {7, 1}, {0, 0}};
    for (auto c : cases) {
        CRLFile f;
        for (uint64_t i = 0; i < c.bits; ++i) f.WriteBits(1, 1);
        EXPECT_EQ(f.PadToByte(c.bits), c.pad) << c.bits;
        EXPECT_EQ(f.GetBitOffset(), 0u);
        EXPECT_EQ(f.GetLength(), (c.bits + 7) / 8);
    }
}

TEST(CRLFile, VersionComesFromTheDrivingManagerOrIsZero) {
    CRLFile f;
    EXPECT_EQ(f.GetVersion(), 0);
    f.SetVersion(4);
    EXPECT_EQ(f.GetVersion(), 4);
}

}  // namespace
}  // namespace Tarn
