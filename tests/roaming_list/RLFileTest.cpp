#include <gtest/gtest.h>

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
