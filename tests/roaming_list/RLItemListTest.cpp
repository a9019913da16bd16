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

}  // namespace
}  // namespace Tarn
