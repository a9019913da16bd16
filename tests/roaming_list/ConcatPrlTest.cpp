#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "roaming_list/ConcatPrl.h"
#include "roaming_list/RLManager.h"
#include "tests/roaming_list/ListSamples.h"
#include "tests/support/Files.h"
#include "tests/support/ListBytes.h"

namespace Tarn {
namespace {
namespace fs = std::filesystem;

// An empty version 1 list: 8 header bytes and the CRC.
std::vector<uint8_t> TenByteList(uint16_t id) {
    return Tarn::Test::Seal(
        Tarn::Test::PackBits({{16, 0}, {16, id}, {1, 1}, {8, 0x40}, {9, 0}, {14, 0}}));
}

class ConcatPrlFiles : public ::testing::Test {
protected:
    fs::path Put(const std::string& name, const std::vector<uint8_t>& bytes) {
        Tarn::Test::WriteBytes(dir_ / name, bytes);
        return dir_ / name;
    }
    fs::path Path(const std::string& name) const { return dir_ / name; }
    std::vector<uint8_t> Get(const std::string& name) const { return Tarn::Test::SlurpBytes(dir_ / name); }
    static std::string ErrorOf(const std::function<void()>& operation) {
        try {
            operation();
        } catch (const ConcatPrlException& e) {
            return e.what();
        }
        return "";
    }

    Tarn::Test::TempDir dir_;
};

TEST_F(ConcatPrlFiles, JoinCopiesBothListsAndSplitGivesThemBack) {
    const std::vector<uint8_t> first = TenByteList(0x1111);
    const std::vector<uint8_t> second =
        ListSamples::Binary(*ListSamples::List(1, {"3\t1\t2\t3\t4\t5\t6"}, {}), 1);
    ASSERT_EQ(second.size(), 20u);
    Put("joined.prl", std::vector<uint8_t>(500, 0xEE));  // replaced, not appended to
    JoinPrl(Put("a.prl", first), Put("b.prl", second), Path("joined.prl"));

    std::vector<uint8_t> joined = Get("joined.prl");
    std::vector<uint8_t> expected = first;
    expected.insert(expected.end(), second.begin(), second.end());
    const uint16_t crc = Crc16(expected.data(), expected.size());
    expected.push_back(static_cast<uint8_t>(crc >> 8));
    expected.push_back(static_cast<uint8_t>(crc));
    EXPECT_EQ(joined, expected);
    size_t s1 = 0;
    EXPECT_TRUE(CheckConcatenatedPrl(joined.data(), joined.size(), s1));
    EXPECT_EQ(s1, 10u);
    EXPECT_TRUE(IsConcatenatedPrl(Path("joined.prl")));
    EXPECT_FALSE(IsConcatenatedPrl(Path("a.prl")));  // a single list never passes

    SplitPrl(Path("joined.prl"), Path("one.prl"), Path("two.prl"));
    EXPECT_EQ(Get("one.prl"), first);
    EXPECT_EQ(Get("two.prl"), second);

    // Any changed byte fails the check, and the split says so without writing anything.
    for (size_t i = 0; i < joined.size(); ++i) {
        std::vector<uint8_t> bad = joined;
        bad[i] ^= 0x10;
        EXPECT_FALSE(CheckConcatenatedPrl(bad.data(), bad.size(), s1)) << i;
    }
    joined[3] ^= 1;
    EXPECT_EQ(ErrorOf([&] { SplitPrl(Put("bad.prl", joined), Path("x"), Path("y")); }),
              "Input file is not a valid Concatenated PRL file.");
    EXPECT_FALSE(fs::exists(Path("x")));
}

// Size words that do not add up to the file, under a good outer CRC, are refused before any
// inner CRC is computed over them.
TEST(CheckConcatenatedPrl, ShortBuffersAndSizeWordsThatDoNotAddUp) {
    for (const std::vector<uint8_t>& bytes : {std::vector<uint8_t>{}, {0x00}, {0xFF, 0xFF}}) {
        size_t s1 = 0;
        EXPECT_FALSE(
            CheckConcatenatedPrl(bytes.empty() ? nullptr : bytes.data(), bytes.size(), s1));
    }
    // 10 + 10 + 2 bytes whose inner CRCs are not sealed, with the first size word set to s1.
    const std::vector<uint8_t> addsUp = Tarn::Test::WithWord(std::vector<uint8_t>(22, 0), 10, 10);
    for (uint16_t s1 : {0, 1, 9, 10, 11, 18, 19, 20, 0xFFFF}) {
        size_t out = 0;
        const auto bytes = Tarn::Test::WithWord(addsUp, 0, s1);
        EXPECT_FALSE(CheckConcatenatedPrl(bytes.data(), bytes.size(), out)) << s1;
    }
    // A first size word of 1 makes the second one 0x0100: a file of 1 + 256 + 2 bytes adds up,
    // but its first list is too short to hold its own CRC.
    const std::vector<uint8_t> one = Tarn::Test::WithWord(std::vector<uint8_t>(259, 0), 1, 0x0100);
    size_t out = 7;
    EXPECT_FALSE(CheckConcatenatedPrl(one.data(), one.size(), out));
    EXPECT_EQ(out, 7u);
}

TEST_F(ConcatPrlFiles, RefusalsOfJoinAndSplit) {
    const fs::path good = Put("good.prl", TenByteList(5));
    const std::string text = "\r\n\t\t=============== ROAMING LIST ===============\r\n";
    const fs::path textList = Put("list.txt", std::vector<uint8_t>(text.begin(), text.end()));
    const fs::path binaryNamedTxt = Put("binary.TXT", TenByteList(6));  // opened as text
    std::vector<uint8_t> badCrc = TenByteList(5);
    badCrc.back() ^= 1;
    const fs::path corrupt = Put("corrupt.prl", badCrc);
    const fs::path prefixed = Put("prefixed.prl", Tarn::Test::Prefix(TenByteList(3)));
    // The largest list a reader takes is 65535 bytes behind a 5-byte prefix; a byte more is too
    // large to be a list.
    const std::vector<uint8_t> largest =
        Tarn::Test::Prefix(ListSamples::Binary(*ListSamples::ListOfSize(0xFFFF), 3));
    ASSERT_EQ(largest.size(), 0xFFFFu + 5);
    const fs::path mostAllowed = Put("largest.prl", largest);
    std::vector<uint8_t> oneMore = largest;
    oneMore.push_back(0);
    const fs::path tooLarge = Put("huge.prl", oneMore);
    const fs::path missing = Path("missing.prl");
    const fs::path noFolder = Path("no/such/folder/out.prl");
    JoinPrl(prefixed, good, Path("withPrefix.prl"));  // copied as it is, so no longer splittable
    JoinPrl(good, good, Path("j.prl"));
    JoinPrl(mostAllowed, good, Path("large.prl"));
    EXPECT_EQ(Get("large.prl").size(), largest.size() + 10 + 2);

    struct Case {
        const char* name;
        std::function<void()> operation;
        std::string error;
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"first missing", [&] { JoinPrl(missing, good, Path("o")); }, "Error opening first input file."},
        {"second missing", [&] { JoinPrl(good, missing, Path("o")); }, "Error opening second input file."},
        {"text first", [&] { JoinPrl(textList, good, Path("o")); }, "First input file is not a valid roaming list file."},
        {"text second", [&] { JoinPrl(good, textList, Path("o")); }, "Second input file is not a valid roaming list file."},
        {"binary under .txt", [&] { JoinPrl(binaryNamedTxt, good, Path("o")); }, "First input file is not a valid roaming list file."},
        {"bad CRC second", [&] { JoinPrl(good, corrupt, Path("o")); }, "Second input file is not a valid roaming list file."},
        {"too large first", [&] { JoinPrl(tooLarge, good, Path("o")); }, "First input file is not a valid roaming list file."},
        {"too large second", [&] { JoinPrl(good, tooLarge, Path("o")); }, "Second input file is not a valid roaming list file."},
        {"output not writable", [&] { JoinPrl(good, good, noFolder); }, "Error writing output file."},
        {"split input missing", [&] { SplitPrl(missing, Path("o"), Path("p")); }, "Error opening input file."},
        {"split prefixed join", [&] { SplitPrl(Path("withPrefix.prl"), Path("o"), Path("p")); },
         "Input file is not a valid Concatenated PRL file."},
        {"split first output", [&] { SplitPrl(Path("j.prl"), noFolder, Path("p")); }, "Error writing first output file."},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ErrorOf(c.operation), c.error);
        EXPECT_FALSE(fs::exists(Path("o")));
    }
    // The first output of a split stays when the second cannot be written.
    EXPECT_EQ(ErrorOf([&] { SplitPrl(Path("j.prl"), Path("one.prl"), noFolder); }),
              "Error writing second output file.");
    EXPECT_EQ(Get("one.prl"), TenByteList(5));
}

}  // namespace
}  // namespace Tarn
