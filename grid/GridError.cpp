#include "grid/GridError.h"

#include "foundation/MessageTable.h"

namespace Tarn {
namespace {

// Each message names its cell in its own order; the ones with fewer conversions simply take the
// leading arguments they need.
std::string Compose(unsigned id, int column, int row, const std::string& table,
                    const std::optional<std::pair<long long, long long>>& range) {
    switch (id) {
        case Msg::ChannelGap:
        case Msg::UmbGap:
        case Msg::TypeSpecificGap:
            return FormatMessage(id, {row});
        case Msg::InvalidAssnTag:
            return FormatMessage(id, {row, table});
        case Msg::OutOfRange:
            return FormatMessage(id, {column, row, table, range ? range->first : 0,
                                      range ? range->second : 0});
        default:
            if (HasMessage(id)) return FormatMessage(id, {column, row, table});
            return "Error " + std::to_string(id) + " in column " + std::to_string(column) +
                   ", row " + std::to_string(row) + " of the " + table + ".";
    }
}

}  // namespace

GridError::GridError(unsigned messageId, int column, int row, std::string tableName)
    : messageId_(messageId), column_(column), row_(row), tableName_(std::move(tableName)) {
    text_ = Compose(messageId_, column_, row_, tableName_, range_);
}

GridError::GridError(unsigned messageId, int column, int row, std::string tableName,
                     long long low, long long high)
    : messageId_(messageId),
      column_(column),
      row_(row),
      tableName_(std::move(tableName)),
      range_(std::make_pair(low, high)) {
    text_ = Compose(messageId_, column_, row_, tableName_, range_);
}

}  // namespace Tarn
