#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "roaming_list/AcqItem.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/RLManager.h"
#include "tests/support/ListBytes.h"

namespace Tarn {
namespace {
namespace fs = std::filesystem;

// An empty version 1 list: 8 header bytes and the CRC.
std::vector<uint8_t> TenByteList(uint16_t id) {
    return Tarn::Test::Seal(Tarn::Test::PackBits({{16, 0}, {16, id}, {1, 1}, {8, 0x40}, {9, 0}, {14, 0}}));
}

// One custom cellular record of six channels (75 bits) after the 64-bit header: 18 bytes and CRC.
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
        dir_ = fs::temp_directory_path() / ("tarn-concat-" + std::to_string(std::random_device{}()));
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    fs::path Put(const std::string& name, const std::vector<uint8_t>& bytes) {
        std::ofstream(dir_ / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return dir_ / name;
    }
    fs::path Path(const std::string& name) const { return dir_ / name; }
    std::vector<uint8_t> Get(const std::string& name) const {
        std::ifstream in(dir_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    template <typename Operation>
    static std::string ErrorOf(Operation operation) {
        try {
            operation();
        } catch (const ConcatPrlException& e) {
            return e.what();
        }
        return "";
    }

    fs::path dir_;
};

TEST_F(ConcatPrlFiles, JoinCopiesBothListsAndSplitGivesThemBack) {
    const std::vector<uint8_t> first = TenByteList(0x1111);
    const std::vector<uint8_t> second = TwentyByteList();
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

TEST(CheckConcatenatedPrl, ShortBuffersAndSizeFieldsThatDoNotAddUp) {
    auto sealed = [](std::vector<uint8_t> v) { return Tarn::Test::Seal(std::move(v)); };  // outer CRC
    const std::vector<uint8_t> tiny[] = {{}, {0x00}, {0xFF, 0xFF}};
    for (const auto& bytes : tiny) {
        size_t s1 = 0;
        EXPECT_FALSE(CheckConcatenatedPrl(bytes.empty() ? nullptr : bytes.data(), bytes.size(), s1));
    }
    // Seal() writes the whole length in front, which is never a valid first size: patch it.
    auto withFirstSize = [&](uint16_t s1, std::vector<uint8_t> body) {
        body[0] = static_cast<uint8_t>(s1 >> 8);
        body[1] = static_cast<uint8_t>(s1);
        const uint16_t crc = Crc16(body.data(), body.size() - 2);
        body[body.size() - 2] = static_cast<uint8_t>(crc >> 8);
        body[body.size() - 1] = static_cast<uint8_t>(crc);
        return body;
    };
    std::vector<uint8_t> addsUp = sealed(std::vector<uint8_t>(20, 0));
    addsUp[11] = 10;  // 10 + 10 + 2 bytes, but neither inner CRC is sealed
    for (uint16_t s1 : {0, 1, 9, 10, 11}) {
        size_t out = 0;
        const auto bytes = withFirstSize(s1, addsUp);
        EXPECT_FALSE(CheckConcatenatedPrl(bytes.data(), bytes.size(), out)) << s1;
    }
}

TEST_F(ConcatPrlFiles, RefusalsOfJoinAndSplit) {
    const fs::path good = Put("good.prl", TenByteList(5));
    const std::string text = "\r\n\t\t=============== ROAMING LIST ===============\r\n";
    const fs::path textList = Put("list.txt", std::vector<uint8_t>(text.begin(), text.end()));
    const fs::path binaryNamedTxt = Put("binary.TXT", TenByteList(6));  // opened as text
    std::vector<uint8_t> badCrc = TenByteList(5);
    badCrc.back() ^= 1;
    const fs::path corrupt = Put("corrupt.prl", badCrc);
    const fs::path huge = Put("huge.prl", std::vector<uint8_t>(70000, 0));
    const fs::path prefixed = Put("prefixed.prl", Tarn::Test::Prefix(TenByteList(3)));
    const fs::path missing = Path("missing.prl");
    const fs::path noFolder = Path("no/such/folder/out.prl");
    JoinPrl(prefixed, good, Path("withPrefix.prl"));  // copied as it is, so no longer splittable
    JoinPrl(good, good, Path("j.prl"));

    struct Case {
        const char* name;
        std::function<void()> operation;
        std::string error;
    } cases[] = {
        {"first missing", [&] { JoinPrl(missing, good, Path("o")); }, "Error opening first input file."},
        {"text first", [&] { JoinPrl(textList, good, Path("o")); },
         "First input file is not a valid roaming list file."},
        {"text second", [&] { JoinPrl(good, textList, Path("o")); },
         "Second input file is not a valid roaming list file."},
        {"binary under .txt", [&] { JoinPrl(binaryNamedTxt, good, Path("o")); },
         "First input file is not a valid roaming list file."},
        {"bad CRC second", [&] { JoinPrl(good, corrupt, Path("o")); },
         "Second input file is not a valid roaming list file."},
        {"too large first", [&] { JoinPrl(huge, good, Path("o")); },
         "First input file is not a valid roaming list file."},
        {"output not writable", [&] { JoinPrl(good, good, noFolder); }, "Error writing output file."},
        {"split input missing", [&] { SplitPrl(missing, Path("o"), Path("p")); },
         "Error opening input file."},
        {"split prefixed join", [&] { SplitPrl(Path("withPrefix.prl"), Path("o"), Path("p")); },
         "Input file is not a valid Concatenated PRL file."},
        {"split first output", [&] { SplitPrl(Path("j.prl"), noFolder, Path("p")); },
         "Error writing first output file."},
    };
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
