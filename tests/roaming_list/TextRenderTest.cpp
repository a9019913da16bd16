#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "roaming_list/AcqItem.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/SysItem.h"

namespace Tarn {
namespace {

// An acquisition record whose fields are whatever text it is given, so the renderer's checks of
// a record line can be driven directly.
class FixedTextAcq : public CAcqItem {
public:
    explicit FixedTextAcq(std::string text) : text_(std::move(text)) {}
    uint8_t GetAcqType() const override { return 6; }
    bool IsValid() const override { return true; }
    std::unique_ptr<CRLItem> Clone() const override {
        return std::make_unique<FixedTextAcq>(text_);
    }
    std::string ToText() const override { return text_; }

protected:
    uint32_t ReadFields(CRLFile&, int) override { return 0; }
    uint32_t WriteFields(CRLFile&) const override { return 0; }

private:
    std::string text_;
};

TEST(TextRender, RecordLinesAreCheckedWhereTheyLand) {
    struct Case {
        const char* fields;
        const char* refusal;  // empty: the line is rendered as given
    };
    const std::vector<Case> cases = {
        {"5\t6\t", ""},
        {"", ""},
        {"5\t6", ""},  // no closing tab: the last field is still a field
        {"Invalidity\t", ""},
        {"5\t\t6\t", "field 2 is empty"},
        {"5\t  \t", "field 2 is empty"},
        {"5\t ", "field 2 is empty"},
        {"Invalid\t", "field 1 has no name"},
        {"5\tInvalid\t\t", "field 2 has no name"},  // the first bad field is the one named
        {"\t5\r\t", "a field holds a line break"},  // a line break outranks an earlier bad field
        {"5\t6\n", "a field holds a line break"},
        // Two tabs side by side wherever the line's eight-byte words put them.
        {"\t5\t", "field 1 is empty"},
        {"1234567\t\t8\t", "field 2 is empty"},
        {"123456789\t\t", "field 2 is empty"},
        {"12345678901234\t5\t\t", "field 3 is empty"},
        {"1234567812345678123\t\t", "field 2 is empty"},
        {"1234567\t12345678\t123456\t", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fields);
        CRLData data;
        data.GetAcqTable().Items().Add(std::make_unique<FixedTextAcq>("1\t"));
        data.GetAcqTable().Items().Add(std::make_unique<FixedTextAcq>(c.fields));
        try {
            const std::string text = RenderRoamingListText(data, 3);
            EXPECT_EQ(std::string(c.refusal), "");
            EXPECT_NE(text.find("\t0\t6\t1\t\r\n\t1\t6\t" + std::string(c.fields) + "\r\n"),
                      std::string::npos);
        } catch (const CTextRenderException& e) {
            EXPECT_EQ(e.Detail(), "acquisition record 1: " + std::string(c.refusal));
        }
    }
}

// A system record vouches for its own line and skips the check; one whose flag has no name must
// not, and is refused as any other record line would be.
TEST(TextRender, SystemRecordsWithNamelessFlagsAreStillRefused) {
    struct Case {
        int type;
        int version;
        void (*edit)(CSysItem&);
        const char* line;     // the record's fields as rendered, or
        const char* refusal;  // why the record is refused
    };
    const auto none = [](CSysItem&) {};
    // clang-format off
    const std::vector<Case> cases = {
        {0, 3, none, "Pref\tNew\tSame\t0\t0\tNo\t0\tNo\tNo\t0\t65535\t0\t", ""},
        {0, 1, none, "Pref\tNew\tSame\t0\t0\t0\t65535\t0\t", ""},
        {14, 3, none, "Pref\tNew\tSame\t0\t0\tNo\t0\tNo\tNo\t0\t0\t", ""},
        {0, 3, [](CSysItem& r) { r.SetNegPref(2); }, "", "field 1 has no name"},
        {0, 3, [](CSysItem& r) { r.SetGeography(7); }, "", "field 2 has no name"},
        {0, 3, [](CSysItem& r) { r.SetPriority(64); }, "", "field 3 has no name"},
        {0, 3, [](CSysItem& r) { r.SetAssnIncluded(2); }, "", "field 6 has no name"},
        {0, 3, [](CSysItem& r) { r.SetPnAssn(255); }, "", "field 8 has no name"},
        {14, 5, [](CSysItem& r) { r.SetDataAssn(3); }, "", "field 9 has no name"},
        {0, 1, [](CSysItem& r) { r.SetGeography(2); }, "", "field 2 has no name"},
        // Version 1 shows no association fields, so nothing nameless is rendered.
        {0, 1, [](CSysItem& r) { r.SetAssnIncluded(2); }, "Pref\tNew\tSame\t0\t0\t0\t65535\t0\t", ""},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.type) + "/" + std::to_string(c.version) + " " + c.refusal);
        std::unique_ptr<CSysItem> record = CreateSysItem(c.type, c.version);
        c.edit(*record);
        const std::string fields = record->ToText();
        CRLData data;
        data.GetSysTable().Items().Add(std::move(record));
        try {
            const std::string text = RenderRoamingListText(data, c.version);
            EXPECT_STREQ(c.refusal, "");
            const std::string line = "\t0\t" + std::to_string(c.type) + "\t" + c.line + "\r\n";
            EXPECT_EQ(text.substr(text.size() - line.size()), line);
            EXPECT_EQ(fields, c.line);
        } catch (const CTextRenderException& e) {
            EXPECT_EQ(e.Detail(), "system record 0: " + std::string(c.refusal));
        }
    }
}

}  // namespace
}  // namespace Tarn
