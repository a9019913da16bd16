#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "roaming_list/AcqItem.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"
#include "tests/support/ListBytes.h"

namespace Tarn {
namespace {
namespace fs = std::filesystem;

using Test::PackBits;
using Test::Prefix;
using Test::Seal;

// An empty short-form list: 8 header bytes and the CRC.
std::vector<uint8_t> ShortList(uint16_t id) {
    return Seal(PackBits({{16, 0}, {16, id}, {1, 1}, {8, 0x40}, {9, 0}, {14, 0}}));
}

// An empty long-form list: 11 header bytes and the CRC.
std::vector<uint8_t> LongList(uint16_t id) {
    return Seal(PackBits(
        {{16, 0}, {16, id}, {8, 3}, {1, 0}, {8, 1}, {9, 0}, {9, 0}, {14, 0}, {7, 0}}));
}

// A version 1 list of 20 bytes: one custom cellular record of six channels (75 bits) after the
// 64-bit header, padded to 18 bytes, and the CRC.
std::vector<uint8_t> TwentyByteList() {
    CRLManagerA manager;
    auto custom = CreateAcqItem(3, 1);
    custom->FromText({"1", "2", "3", "4", "5", "6"});
    manager.GetData().GetAcqTable().Items().Add(std::move(custom));
    CRLFile file;
    EXPECT_TRUE(manager.WriteList(file));
    return file.Bytes();
}

class ConcatPrlFiles : public ::testing::Test {
protected:
    void SetUp() override {
        std::random_device rd;
        dir_ = fs::temp_directory_path() / ("tarn-concat-" + std::to_string(rd()));
        fs::create_directories(dir_);
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(dir_, ec);
    }

    fs::path Put(const std::string& name, const std::vector<uint8_t>& bytes) {
        fs::path p = dir_ / name;
        std::ofstream(p, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return p;
    }
    fs::path Path(const std::string& name) const { return dir_ / name; }
    static std::vector<uint8_t> Get(const fs::path& p) {
        std::ifstream in(p, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    static std::string JoinError(const fs::path& a, const fs::path& b, const fs::path& out) {
        try {
            JoinPrl(a, b, out);
        } catch (const ConcatPrlException& e) {
            return e.what();
        }
        return "";
    }
    static std::string SplitError(const fs::path& in, const fs::path& a, const fs::path& b) {
        try {
            SplitPrl(in, a, b);
        } catch (const ConcatPrlException& e) {
            return e.what();
        }
        return "";
    }

    fs::path dir_;
};

TEST_F(ConcatPrlFiles, JoinCopiesBothListsAndSplitGivesThemBack) {
    const std::vector<uint8_t> first = ShortList(0x1111);
    const std::vector<uint8_t> second = TwentyByteList();
    ASSERT_EQ(first.size(), 10u);
    ASSERT_EQ(second.size(), 20u);
    JoinPrl(Put("a.prl", first), Put("b.prl", second), Path("joined.prl"));

    const std::vector<uint8_t> joined = Get(Path("joined.prl"));
    ASSERT_EQ(joined.size(), 32u);
    EXPECT_TRUE(std::equal(first.begin(), first.end(), joined.begin()));
    EXPECT_TRUE(std::equal(second.begin(), second.end(), joined.begin() + 10));
    const uint16_t crc = Crc16(joined.data(), 30);
    EXPECT_EQ(joined[30], crc >> 8);
    EXPECT_EQ(joined[31], crc & 0xFF);

    size_t s1 = 0;
    EXPECT_TRUE(CheckConcatenatedPrl(joined.data(), joined.size(), s1));
    EXPECT_EQ(s1, 10u);
    EXPECT_TRUE(IsConcatenatedPrl(Path("joined.prl")));
    EXPECT_FALSE(IsConcatenatedPrl(Path("a.prl")));  // a single list never passes

    SplitPrl(Path("joined.prl"), Path("one.prl"), Path("two.prl"));
    EXPECT_EQ(Get(Path("one.prl")), first);
    EXPECT_EQ(Get(Path("two.prl")), second);
}

TEST_F(ConcatPrlFiles, OutputsAreCreatedOrReplaced) {
    const fs::path out = Put("joined.prl", std::vector<uint8_t>(500, 0xEE));
    JoinPrl(Put("a.prl", ShortList(1)), Put("b.prl", ShortList(2)), out);
    EXPECT_EQ(Get(out).size(), 22u);
}

TEST_F(ConcatPrlFiles, EveryChangedByteFailsTheStructureCheck) {
    JoinPrl(Put("a.prl", ShortList(7)), Put("b.prl", LongList(9)), Path("j.prl"));
    const std::vector<uint8_t> good = Get(Path("j.prl"));
    for (size_t i = 0; i < good.size(); ++i) {
        SCOPED_TRACE(i);
        std::vector<uint8_t> bad = good;
        bad[i] ^= 0x10;
        size_t s1 = 12345;
        EXPECT_FALSE(CheckConcatenatedPrl(bad.data(), bad.size(), s1));
        EXPECT_EQ(s1, 12345u);
    }
    std::vector<uint8_t> bad = good;
    bad[3] ^= 0x01;
    EXPECT_EQ(SplitError(Put("bad.prl", bad), Path("x"), Path("y")),
              "Input file is not a valid Concatenated PRL file.");
    EXPECT_FALSE(fs::exists(Path("x")));
}

TEST(CheckConcatenatedPrl, RefusesShortAndMalformedBuffers) {
    // Sealed with a good outer CRC, but the inner size fields point outside or do not add up.
    auto sealOuter = [](std::vector<uint8_t> v) {
        const uint16_t crc = Crc16(v.data(), v.size());
        v.push_back(static_cast<uint8_t>(crc >> 8));
        v.push_back(static_cast<uint8_t>(crc));
        return v;
    };
    const std::vector<uint8_t> a = ShortList(1);
    std::vector<uint8_t> both = a;
    both.insert(both.end(), a.begin(), a.end());
    std::vector<uint8_t> firstTooLong = both;
    firstTooLong[1] = static_cast<uint8_t>(both.size() - 1);

    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
    } cases[] = {
        {"empty", {}},
        {"one byte", {0x00}},
        {"two bytes", {0xFF, 0xFF}},
        {"CRC of nothing", sealOuter({})},
        {"size 0 in front", sealOuter({0, 0, 0, 0, 0, 0})},
        {"size 1 in front", sealOuter({0, 1, 0, 0, 0, 0})},
        {"first list reaches the second's size field", sealOuter(firstTooLong)},
        {"second size field one short", [&] {
             std::vector<uint8_t> v = both;
             v[11] = static_cast<uint8_t>(v[11] - 1);
             return sealOuter(v);
         }()},
        {"inner CRCs not sealed", sealOuter({0, 4, 0, 0, 0, 4, 0, 0})},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        size_t s1 = 0;
        EXPECT_FALSE(CheckConcatenatedPrl(c.bytes.empty() ? nullptr : c.bytes.data(),
                                          c.bytes.size(), s1));
    }
    size_t s1 = 0;
    EXPECT_TRUE(CheckConcatenatedPrl(sealOuter(both).data(), 22, s1));
    EXPECT_EQ(s1, 10u);
}

TEST_F(ConcatPrlFiles, JoinRefusesWhatIsNotABinaryList) {
    const fs::path good = Put("good.prl", ShortList(5));
    const std::string text = "\r\n\t\t=============== ROAMING LIST ===============\r\n";
    const fs::path textList = Put("list.txt", std::vector<uint8_t>(text.begin(), text.end()));
    // A valid binary list under a ".txt" name is read as the text form by the editor.
    const fs::path binaryNamedTxt = Put("binary.TXT", ShortList(6));
    std::vector<uint8_t> badCrc = ShortList(5);
    badCrc.back() ^= 1;
    const fs::path corrupt = Put("corrupt.prl", badCrc);
    const fs::path tiny = Put("tiny.prl", {0x00, 0x02});
    const fs::path huge = Put("huge.prl", std::vector<uint8_t>(70000, 0));
    const fs::path missing = Path("missing.prl");

    struct Case {
        const char* name;
        fs::path first, second;
        std::string error;
    } cases[] = {
        {"first missing", missing, good, "Error opening first input file."},
        {"first is a folder", dir_, good, "Error opening first input file."},
        {"second missing", good, missing, "Error opening second input file."},
        {"text first", textList, good, "First input file is not a valid roaming list file."},
        {"text second", good, textList, "Second input file is not a valid roaming list file."},
        {"binary under .txt", binaryNamedTxt, good,
         "First input file is not a valid roaming list file."},
        {"bad CRC second", good, corrupt, "Second input file is not a valid roaming list file."},
        {"two bytes first", tiny, good, "First input file is not a valid roaming list file."},
        {"too large first", huge, good, "First input file is not a valid roaming list file."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(JoinError(c.first, c.second, Path("out.prl")), c.error);
        EXPECT_FALSE(fs::exists(Path("out.prl")));
    }
}

TEST_F(ConcatPrlFiles, PrefixedInputIsCopiedAsItIsAndTheResultCannotBeSplit) {
    const std::vector<uint8_t> prefixed = Prefix(ShortList(3));
    JoinPrl(Put("p.prl", prefixed), Put("b.prl", ShortList(4)), Path("j.prl"));
    const std::vector<uint8_t> joined = Get(Path("j.prl"));
    ASSERT_EQ(joined.size(), prefixed.size() + 10 + 2);
    EXPECT_TRUE(std::equal(prefixed.begin(), prefixed.end(), joined.begin()));
    EXPECT_FALSE(IsConcatenatedPrl(Path("j.prl")));
    EXPECT_EQ(SplitError(Path("j.prl"), Path("x"), Path("y")),
              "Input file is not a valid Concatenated PRL file.");
}

TEST_F(ConcatPrlFiles, SplitReportsAnInputItCannotOpen) {
    EXPECT_EQ(SplitError(Path("nothing.prl"), Path("x"), Path("y")), "Error opening input file.");
    EXPECT_EQ(SplitError(dir_, Path("x"), Path("y")), "Error opening input file.");
    EXPECT_FALSE(IsConcatenatedPrl(Path("nothing.prl")));
}

TEST_F(ConcatPrlFiles, AnOutputThatCannotBeWrittenIsReported) {
    JoinPrl(Put("a.prl", ShortList(1)), Put("b.prl", ShortList(2)), Path("j.prl"));
    const fs::path noFolder = Path("no/such/folder/out.prl");
    EXPECT_EQ(JoinError(Path("a.prl"), Path("b.prl"), noFolder), "Error writing output file.");
    EXPECT_EQ(SplitError(Path("j.prl"), noFolder, Path("two.prl")),
              "Error writing first output file.");
    EXPECT_EQ(SplitError(Path("j.prl"), Path("one.prl"), noFolder),
              "Error writing second output file.");
    EXPECT_TRUE(fs::exists(Path("one.prl")));  // written before the failure, and left as it is
}

}  // namespace
}  // namespace Tarn
