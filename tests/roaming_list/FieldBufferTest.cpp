#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "roaming_list/SysItemHelpers.h"

namespace Tarn::SysFields {
namespace {

// The buffer must give exactly what one append per field gives, wherever its own room runs out:
// a field that no longer fits, one longer than the whole buffer, numbers at the edge.
TEST(FieldBuffer, GivesWhatAnAppendPerFieldGives) {
    using Field = std::variant<uint32_t, std::string>;
    const std::string longName(300, 'n');
    const std::string edge(126, 'e');  // leaves one byte: too little for any number
    std::vector<Field> manyNumbers;
    for (uint32_t i = 0; i < 40; ++i) manyNumbers.emplace_back(std::in_place_type<uint32_t>, ~i);
    const std::vector<std::vector<Field>> cases = {
        {},
        {0u, std::string("More"), 4294967295u},
        {std::string(edge), 7u, std::string("x")},
        {std::string(edge), std::string("x"), std::string("y")},
        {std::string("a"), std::string(longName), std::string("b")},
        {std::string(127, 'f')},
        {std::string(128, 'g')},
        manyNumbers,
    };
    for (size_t c = 0; c < cases.size(); ++c) {
        std::string expected = "head\t";
        std::string actual = expected;
        {
            FieldBuffer buffer(actual);
            for (const Field& field : cases[c]) {
                if (const auto* n = std::get_if<uint32_t>(&field)) {
                    AppendTab(expected, *n);
                    buffer.Add(*n);
                } else {
                    AppendTab(expected, std::get<std::string>(field));
                    buffer.Add(std::get<std::string>(field));
                }
            }
            buffer.Flush();
        }
        EXPECT_EQ(actual, expected) << "case " << c;
    }
}

}  // namespace
}  // namespace Tarn::SysFields
