#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "roaming_list/AcqItem.h"
#include "roaming_list/RLManagerText.h"

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
        {"5\t6", ""},                 // no closing tab: the last field is still a field
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

}  // namespace
}  // namespace Tarn
