#include <gtest/gtest.h>

#include <stdexcept>

#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn {
namespace {

// A record of one 8-bit field; records with a value of 0xFF ask to be replaced. `alive` counts
// the records in existence.
class ByteItem : public CRLItem {
public:
    explicit ByteItem(int* alive = nullptr, uint32_t v = 0) : value(v), alive_(alive) {
        if (alive_) ++*alive_;
    }
    ~ByteItem() override {
        if (alive_) --*alive_;
    }
    uint32_t Read(CRLFile& f) override {
        value = f.ReadBits(8);
        return 8;
    }
    uint32_t Write(CRLFile& f) const override {
        f.WriteBits(8, value);
        return 8;
    }
    std::unique_ptr<CRLItem> GetReplacement() override {
        return value == 0xFF ? std::make_unique<ByteItem>(alive_, 0x7F) : nullptr;
    }
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<ByteItem>(alive_, value);
    }
    uint32_t value;

private:
    int* alive_;
};

// Creates records until its budget is spent, then reports that the type has no record class.
class BudgetHelper : public CReadHelper {
public:
    BudgetHelper(int budget, int* alive) : budget_(budget), alive_(alive) {}
    std::unique_ptr<CRLItem> CreateItem(CRLFile&) override {
        return budget_-- > 0 ? std::make_unique<ByteItem>(alive_) : nullptr;
    }

private:
    int budget_;
    int* alive_;
};

uint32_t ValueAt(const CRLItemList& list, size_t i) {
    return static_cast<const ByteItem*>(list.GetAt(i))->value;
}

// A read gives the bits of its records, or 0 when a record cannot be created or ends past the
// stop bit; a record ending on the stop bit is read. A replacement takes the place of the record
// read, which is destroyed.
TEST(CRLItemList, ReadStopsAtTheStopBitAndAtARecordThatCannotBeCreated) {
    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
        int budget;
        uint64_t stopBit;
        uint32_t bits;
        std::vector<uint32_t> values;
    };
    const std::vector<Case> cases = {
        {"ends on the stop bit", {1, 2, 3}, 5, 24, 24, {1, 2, 3}},
        {"ends a bit past it", {1, 2, 3}, 5, 23, 0, {1, 2}},
        {"no record class", {1, 2, 3}, 2, UINT64_MAX, 0, {1, 2}},
        {"replaced", {0x10, 0xFF, 0x20}, 5, UINT64_MAX, 24, {0x10, 0x7F, 0x20}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int alive = 0;
        CRLFile file(c.bytes);
        CRLItemList list;
        list.SetAnnouncedCount(3);
        BudgetHelper helper(c.budget, &alive);
        EXPECT_EQ(list.Read(file, helper, c.stopBit), c.bits);
        ASSERT_EQ(list.GetSize(), c.values.size());
        for (size_t i = 0; i < c.values.size(); ++i) EXPECT_EQ(ValueAt(list, i), c.values[i]);
        EXPECT_EQ(alive, static_cast<int>(c.values.size()));
    }
}

TEST(CRLItemList, EditingKeepsOrderAndWritingUsesTheSize) {
    int alive = 0;
    CRLItemList list;
    list.SetAnnouncedCount(7);
    for (uint32_t v : {10u, 20u, 30u}) list.Add(std::make_unique<ByteItem>(&alive, v));
    list.RemoveAt(0);
    ASSERT_EQ(list.GetSize(), 2u);
    EXPECT_EQ(ValueAt(list, 0), 20u);
    list.InsertAt(0, std::make_unique<ByteItem>(&alive, 5));
    EXPECT_EQ(ValueAt(list, 0), 5u);

    CRLFile out;
    EXPECT_EQ(list.Write(out), 24u);
    EXPECT_EQ(out.Bytes(), (std::vector<uint8_t>{5, 20, 30}));

    CRLItemList copy(list);
    EXPECT_EQ(alive, 6);
    list.Clear();
    EXPECT_EQ(alive, 3);
    EXPECT_EQ(ValueAt(copy, 2), 30u);
}

TEST(CRLItemList, AnnouncedCountOfTwoToTheThirtyIsALengthError) {
    CRLItemList list;
    EXPECT_THROW(list.SetAnnouncedCount(1u << 30), std::length_error);
    EXPECT_NO_THROW(list.SetAnnouncedCount((1u << 30) - 1));  // reserves only what a file can hold
    EXPECT_EQ(list.GetAnnouncedCount(), (1u << 30) - 1);
}

// A record too large for any arena block.
class BulkyItem : public ByteItem {
public:
    using ByteItem::ByteItem;
    unsigned char bulk[70000] = {};
};

// Records placed in an arena are ordinary records: taken out, replaced, outliving the arena and
// their table, heap and arena records mixed. The counts show every record destroyed once; the
// sanitizer build shows the memory given back once and never touched after.
TEST(CItemArena, RecordsOutliveTheArenaAndTheirTable) {
    int alive = 0;
    std::unique_ptr<CRLItem> kept;
    {
        CRLItemList list;
        {
            CItemArena arena;
            // Enough records for several blocks, with a heap record and a bulky one among them.
            for (uint32_t i = 0; i < 5000; ++i) {
                if (i == 1235)
                    list.Add(std::make_unique<ByteItem>(&alive, i));
                else if (i == 4321)
                    list.Add(MakeItem<BulkyItem>(&arena, &alive, i));
                else
                    list.Add(MakeItem<ByteItem>(&arena, &alive, i));
            }
        }
        EXPECT_EQ(alive, 5000);
        for (size_t i = 0; i < list.GetSize(); ++i) list.RemoveAt(i);  // every other record
        ASSERT_EQ(list.GetSize(), 2500u);
        EXPECT_EQ(alive, 2500);
        list.ReplaceAt(0, std::make_unique<ByteItem>(&alive, 7));
        kept = list.TakeAt(2000);
        EXPECT_EQ(ValueAt(list, 0), 7u);
        EXPECT_EQ(ValueAt(list, 616), 1233u);
        EXPECT_EQ(ValueAt(list, 617), 1235u);
        EXPECT_EQ(ValueAt(list, 2158), 4319u);
        EXPECT_EQ(ValueAt(list, 2159), 4321u);
        EXPECT_EQ(alive, 2500);
    }
    EXPECT_EQ(alive, 1);
    ASSERT_TRUE(kept);
    EXPECT_EQ(static_cast<const ByteItem*>(kept.get())->value, 4001u);
    kept.reset();
    EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace Tarn
