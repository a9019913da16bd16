// Every MMSS writer at the edge of what its size, length and count fields hold: the largest file
// writes with the right field, one step more is refused with a message naming the limit, and
// nothing comes out of a refused write.
#include <gtest/gtest.h>

#include <functional>

#include "mmss/Bst3Gpp/Bst3GppDocument.h"
#include "mmss/Bst3Gpp/Bst3GppRecord.h"
#include "mmss/Mlpl/MlplDocument.h"
#include "mmss/Mlpl/MlplRecord.h"
#include "mmss/Mspl/MsplDocument.h"
#include "mmss/Mspl/MsplRecord.h"
#include "mmss/Plmn/PlmnDocument.h"
#include "mmss/TechOrder/TechOrderDocument.h"
#include "mmss/TechOrder/TechOrderRecord.h"
#include "tests/mmss/MmssTestSupport.h"

namespace Tarn {
namespace {

using namespace MmssTest;
// Fields are given as std::string values: GCC 12 at -O3 misreads assigning a literal to a fresh
// document's string as an overlapping copy.
using namespace std::string_literals;

uint32_t SizeWord(const std::vector<uint8_t>& bytes) {
    return bytes.size() < 2 ? 0 : (uint32_t{bytes[0]} << 8) | bytes[1];
}

// An MSPL of exactly `target` bytes: records of 17 and 23 bits spread over as many identifiers as
// the 255-record lists need, the mix chosen so the padded body lands on the byte.
std::unique_ptr<Mspl::Document> MsplOfBytes(uint64_t target) {
    for (uint64_t n = 1;; ++n) {
        const uint64_t ids = (n + 254) / 255;
        const uint64_t base = 48 + 16 * ids + 17 * n;  // header, size word, counts, short records
        if (base > 8 * target) return nullptr;
        const uint64_t low = 8 * (target - 1) + 1;
        const uint64_t wide = base >= low ? 0 : (low - base + 5) / 6;
        if (wide > n || base + 6 * wide > 8 * target) continue;
        auto doc = std::make_unique<Mspl::Document>();
        doc->header.revision = "1"s;
        doc->header.version = "7"s;
        for (uint64_t i = 0; i < n; ++i) {
            if (i % 255 == 0) doc->data.AddId(std::to_string(i / 255));
            auto record = std::make_unique<Mspl::Record>();
            record->networkCap = i < wide ? 0 : 1;
            doc->data.lists.back().Add(std::move(record));
        }
        return doc;
    }
}

TEST(WriteLimit, MsplSizeWordHoldsTheLargestFileAndRefusesOneByteMore) {
    auto largest = MsplOfBytes(65535);
    ASSERT_TRUE(largest);
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(largest->Write(bytes, error)) << error;
    EXPECT_EQ(bytes.size(), 65535u);
    EXPECT_EQ(SizeWord(bytes), 65535u);

    auto over = MsplOfBytes(65536);
    ASSERT_TRUE(over);
    std::vector<uint8_t> none;
    ASSERT_FALSE(over->Write(none, error));
    EXPECT_TRUE(none.empty());
    EXPECT_NE(error.find("The MSPL would be 65,536 bytes; its 16-bit size field holds at most "
                         "65,535."),
              std::string::npos)
        << error;
}

// The largest `n` for which `make(n)` writes, found by halving: the writers refuse from some
// size on and accept everything below it.
size_t LargestWritable(const std::function<std::unique_ptr<FileDocument>(size_t)>& make,
                       size_t high) {
    size_t low = 1;
    std::vector<uint8_t> bytes;
    std::string error;
    while (low < high) {
        const size_t mid = (low + high + 1) / 2;
        if (make(mid)->Write(bytes, error))
            low = mid;
        else
            high = mid - 1;
    }
    return low;
}

std::unique_ptr<FileDocument> MlplWithTags(size_t tags) {
    auto doc = std::make_unique<Mlpl::Document>();
    doc->header.SetValues({"1", "2", "3"});
    for (size_t i = 0; i < tags; ++i) {
        if (i % 255 == 0) {
            doc->data.records.emplace_back();
            doc->data.records.back().msplIndex = "0"s;
        }
        auto tag = std::make_unique<Mlpl::Record>();
        tag->sysType = 0;  // a SID/NID tag: 56 bits
        doc->data.records.back().tags.Add(std::move(tag));
    }
    return doc;
}

TEST(WriteLimit, MlplSizeWordHoldsTheLargestFileAndRefusesTheNextTag) {
    const size_t largest = LargestWritable(MlplWithTags, 255 * 255);
    ASSERT_LT(largest, 255u * 255u);  // the size word, not a count, is what stopped it
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(MlplWithTags(largest)->Write(bytes, error)) << error;
    EXPECT_GT(bytes.size(), 65535u - 10);  // a tag is seven bytes, three more in a new record
    EXPECT_EQ(SizeWord(bytes), bytes.size());

    ASSERT_FALSE(MlplWithTags(largest + 1)->Write(bytes, error));
    EXPECT_NE(error.find("The MLPL would be 65,5"), std::string::npos) << error;
    EXPECT_NE(error.find(" bytes; its 16-bit size field holds at most 65,535."), std::string::npos);
}

std::unique_ptr<Plmn::Document> PlmnOf(uint8_t kind, size_t records) {
    auto doc = std::make_unique<Plmn::Document>();
    doc->data.listKind = kind;
    for (size_t i = 0; i < records; ++i) doc->data.AddRecord();
    return doc;
}

std::unique_ptr<Bst3Gpp::Document> BstOf(size_t entries, size_t channels) {
    auto doc = std::make_unique<Bst3Gpp::Document>();
    doc->header.version = "1"s;
    for (size_t e = 0; e < entries; ++e) {
        Bst3Gpp::Entry entry;
        entry.type = "1";
        entry.extension = "0";
        auto record = std::make_unique<Bst3Gpp::Record>();
        // Whole bands of 255 channels, then the rest in one band.
        for (size_t left = channels; left > 0;) {
            const size_t take = std::min<size_t>(left, 255);
            record->bands.push_back({1, std::vector<uint16_t>(take, 100)});
            left -= take;
        }
        entry.records.Add(std::move(record));
        doc->data.entries.push_back(std::move(entry));
    }
    return doc;
}

// Entries with RatIds 0, 1, ... 255, 0, 1, ...
std::unique_ptr<TechOrder::Document> TechOrderOf(size_t records) {
    auto doc = std::make_unique<TechOrder::Document>();
    doc->header.version = "1"s;
    for (size_t i = 0; i < records; ++i) {
        auto record = std::make_unique<TechOrder::Record>();
        record->ratId = static_cast<uint8_t>(i);
        doc->data.records.Add(std::move(record));
    }
    return doc;
}

TEST(WriteLimit, CountAndLengthFieldsRefuseWhatTheyCannotHold) {
    struct Case {
        const char* what;
        std::function<std::unique_ptr<FileDocument>()> fits;
        size_t fitsBytes;  // 0: not checked
        std::function<std::unique_ptr<FileDocument>()> over;
        const char* message;
    };
    // A band list is 1 byte, then 2 a band and 2 a channel: 32,513 channels in 128 bands make
    // 65,283 bytes, and the first bytes past 65,535 come with 32,640 channels in 128 bands.
    const Case cases[] = {
        {"EHPLMN of 21,845 records", [] { return PlmnOf(1, 21845); }, 65535,
         [] { return PlmnOf(1, 21846); },
         "The list holds 21846 records, 65,538 bytes; a PLMN list file holds at most 65,535."},
        {"UPLMN of 13,107 records", [] { return PlmnOf(3, 13107); }, 65535,
         [] { return PlmnOf(3, 13108); },
         "The list holds 13108 records, 65,540 bytes; a PLMN list file holds at most 65,535."},
        {"BST band list", [] { return BstOf(1, 32513); }, 0, [] { return BstOf(1, 32640); },
         "Tab 1: A record's band list would be 65,537 bytes; its 16-bit length field holds at "
         "most 65,535."},
        {"BST of 65,535 entries", [] { return BstOf(65535, 1); }, 0, [] { return BstOf(65536, 1); },
         "The file holds 65536 entries; at most 65535 fit in it."},
        // RatIds are one byte and may not repeat, so 256 entries is the most a save takes.
        {"technology order of 256 entries", [] { return TechOrderOf(256); }, 2 + 2 + 256,
         [] { return TechOrderOf(257); }, "redundant entries"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<uint8_t> bytes;
        std::string error;
        EXPECT_TRUE(c.fits()->Write(bytes, error)) << error;
        if (c.fitsBytes) {
            EXPECT_EQ(bytes.size(), c.fitsBytes);
        }
        std::vector<uint8_t> none;
        EXPECT_FALSE(c.over()->Write(none, error));
        EXPECT_TRUE(none.empty());
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
    }
}

TEST(WriteLimit, TechnologyOrderCountWordRefusesWhatItCannotHold) {
    // Below the document's checks: the writer itself never wraps its 16-bit count.
    CRLFile file;
    const auto fits = TechOrderOf(65535);
    TechOrder::SaveFile(file, fits->header, fits->data);
    EXPECT_EQ(file.Bytes().size(), 2u + 2 + 65535);
    EXPECT_EQ(SizeWord({file.Bytes().begin() + 2, file.Bytes().end()}), 65535u);
    CRLFile over;
    const auto doc = TechOrderOf(65536);
    EXPECT_THROW(TechOrder::SaveFile(over, doc->header, doc->data), Mmss::FormatError);
}

}  // namespace
}  // namespace Tarn
