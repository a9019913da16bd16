#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "roaming_list/RLFile.h"

namespace Tarn {
namespace {

// Eight bytes are folded in at a time and the rest one by one: lengths on both sides of those
// steps, at odd starts, against values of a bitwise CRC-16/GENIBUS.
TEST(Crc16, CheckValueAndEveryStepOfTheFolding) {
    const std::string check = "123456789";
    EXPECT_EQ(Crc16(reinterpret_cast<const uint8_t*>(check.data()), check.size()), 0xD64E);
    EXPECT_EQ(Crc16(nullptr, 0), 0x0000);
    std::vector<uint8_t> bytes(80);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 37 + 11);
    struct Case {
        size_t offset, length;
        uint16_t crc;
    };
    const std::vector<Case> cases = {
        {0, 1, 0xAF64},  {0, 7, 0x94B6},  {0, 8, 0x8AFC},  {0, 9, 0xD4FD},  {0, 15, 0xFF4A},
        {0, 16, 0x1C6A}, {0, 17, 0x4C2C}, {1, 23, 0xD0EA}, {3, 64, 0xF5C6}, {5, 75, 0x6EE1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Crc16(bytes.data() + c.offset, c.length), c.crc) << c.offset << "+" << c.length;
}

// Fields are packed most significant bit first across bytes. The carrying rules one bit at a
// time, as the stream is documented: the model the whole-window
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
            // The rest of the byte after the first bit written into it is cleared.
            if (i == 0 || offset == 0) bytes[pos] &= static_cast<uint8_t>(0xFF00u >> offset);
            if ((value >> (width - 1 - i)) & 1u)
                bytes[pos] |= static_cast<uint8_t>(0x80u >> offset);
            if (++offset == 8) offset = 0, ++pos;
        }
    }
};

TEST(CRLFile, EveryFieldAgreesWithTheBitwiseRules) {
    std::mt19937 random(20261123);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        std::vector<uint8_t> image(random() % 12);
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
    const std::vector<std::pair<uint64_t, int>> cases = {{88, 0}, {90, 6}, {1, 7}, {7, 1}, {0, 0}};
    for (auto [bits, pad] : cases) {
        CRLFile f;
        for (uint64_t i = 0; i < bits; ++i) f.WriteBits(1, 1);
        EXPECT_EQ(f.PadToByte(bits), pad) << bits;
        EXPECT_EQ(f.GetBitOffset(), 0u);
        EXPECT_EQ(f.GetLength(), (bits + 7) / 8);
    }
}

}  // namespace
}  // namespace Tarn
