// The failure met while a record is taken back from a grid row: a message number and its cell.
#pragma once

#include <exception>
#include <optional>
#include <string>

namespace Tarn {

// Rows and columns are the grid's own zero-based numbers, which are also the record indices the
// views show beside each row, so a message names the row the user sees.
class GridError : public std::exception {
public:
    GridError(unsigned messageId, int column, int row, std::string tableName);
    GridError(unsigned messageId, int column, int row, std::string tableName, long long low,
              long long high);

    unsigned MessageId() const { return messageId_; }
    int Column() const { return column_; }
    int Row() const { return row_; }
    const std::string& TableName() const { return tableName_; }
    bool HasRange() const { return range_.has_value(); }
    long long Low() const { return range_ ? range_->first : 0; }
    long long High() const { return range_ ? range_->second : 0; }

    // The message text with its arguments filled in the order that message asks for.
    const char* what() const noexcept override { return text_.c_str(); }
    const std::string& Text() const { return text_; }

private:
    unsigned messageId_;
    int column_;
    int row_;
    std::string tableName_;
    std::optional<std::pair<long long, long long>> range_;
    std::string text_;
};

}  // namespace Tarn
