#include <gtest/gtest.h>

#include <stdexcept>

#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn {
namespace {

// A record of one 8-bit field; records with a value of 0xFF ask to be replaced.
class ByteItem : public CRLItem {
public:
    explicit ByteItem(int* alive = nullptr) : alive_(alive) {
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
        if (value != 0xFF) return nullptr;
        auto r = std::make_unique<ByteItem>(alive_);
        r->value = 0x7F;
        return r;
    }
    std::unique_ptr<CRLItem> Clone() const override {
        auto c = std::make_unique<ByteItem>(alive_);
        c->value = value;
        return c;
    }
    uint32_t value = 0;

private:
    int* alive_;
};

// Creates records until its budget is spent, then reports that the type has no record class.
class BudgetHelper : public CReadHelper {
public:
    BudgetHelper(int budget, int* alive) : budget_(budget), alive_(alive) {}
    std::unique_ptr<CRLItem> CreateItem(CRLFile&) override {
        if (budget_-- <= 0) return nullptr;
        return std::make_unique<ByteItem>(alive_);
    }

private:
    int budget_;
    int* alive_;
};

uint32_t ValueAt(const CRLItemList& list, size_t i) {
    return static_cast<const ByteItem*>(list.GetAt(i))->value;
}

TEST(CRLItemList, ReadStopsWithZeroBitsWhenARecordCannotBeCreated) {
    int alive = 0;
    CRLFile file(std::vector<uint8_t>{1, 2, 3});
    CRLItemList list;
    list.SetAnnouncedCount(3);
    BudgetHelper helper(2, &alive);
    EXPECT_EQ(list.Read(file, helper), 0u);
    ASSERT_EQ(list.GetSize(), 2u);
    EXPECT_EQ(ValueAt(list, 1), 2u);
    EXPECT_EQ(alive, 2);
}

TEST(CRLItemList, ReplacementTakesThePlaceOfTheRecordRead) {
    int alive = 0;
    CRLFile file(std::vector<uint8_t>{0x10, 0xFF});
    CRLItemList list;
    list.SetAnnouncedCount(2);
    BudgetHelper helper(5, &alive);
    EXPECT_EQ(list.Read(file, helper), 16u);
    EXPECT_EQ(ValueAt(list, 1), 0x7Fu);
    EXPECT_EQ(alive, 2);  // the record first read was destroyed
}

TEST(CRLItemList, EditingKeepsOrderAndWritingUsesTheSize) {
    int alive = 0;
    CRLItemList list;
    list.SetAnnouncedCount(7);
    for (uint32_t v : {10u, 20u, 30u}) {
        auto item = std::make_unique<ByteItem>(&alive);
        item->value = v;
        list.Add(std::move(item));
    }
    list.RemoveAt(0);
    ASSERT_EQ(list.GetSize(), 2u);
    EXPECT_EQ(ValueAt(list, 0), 20u);
    EXPECT_EQ(ValueAt(list, 1), 30u);
    auto first = std::make_unique<ByteItem>(&alive);
    first->value = 5;
    list.InsertAt(0, std::move(first));
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
                std::unique_ptr<ByteItem> item;
                if (i == 1235)
                    item = std::make_unique<ByteItem>(&alive);
                else if (i == 4321)
                    item = MakeItem<BulkyItem>(&arena, &alive);
                else
                    item = MakeItem<ByteItem>(&arena, &alive);
                item->value = i;
                list.Add(std::move(item));
            }
        }
        EXPECT_EQ(alive, 5000);
        for (size_t i = 0; i < list.GetSize(); ++i) list.RemoveAt(i);  // every other record
        ASSERT_EQ(list.GetSize(), 2500u);
        EXPECT_EQ(alive, 2500);
        auto replacement = std::make_unique<ByteItem>(&alive);
        replacement->value = 7;
        list.ReplaceAt(0, std::move(replacement));
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
