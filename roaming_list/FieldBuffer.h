// FieldBuffer: a record line of the text form gathered on the stack, field by field.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace Tarn {

// A short text kept with room to spare behind it, so that it is copied in one fixed-size move.
struct ShortText {
    static constexpr size_t kRoom = 16;
    char bytes[kRoom] = {};
    uint8_t size = 0;
};

// Tab-terminated fields gathered on the stack and appended to the text in one piece: with
// thousands of records, an append per field is most of what rendering a list costs. Flush
// before anything else writes to `out`.
class FieldBuffer {
public:
    explicit FieldBuffer(std::string& out) : out_(out) {}
    FieldBuffer(const FieldBuffer&) = delete;
    FieldBuffer& operator=(const FieldBuffer&) = delete;

    // A number and its tab.
    void Add(uint32_t value) { AddNumber(value); }
    void AddCount(size_t value) { AddNumber(value); }
    // A text and its tab.
    void Add(std::string_view text) {
        AddRaw(text);
        AddRaw('\t');
    }
    void Add(const ShortText& text) {
        if (sizeof buffer_ - used_ <= ShortText::kRoom) Flush();
        std::memcpy(buffer_ + used_, text.bytes, ShortText::kRoom);
        used_ += text.size;
        buffer_[used_++] = '\t';
    }
    // Bytes as they are, no tab added.
    void AddRaw(char c) {
        if (used_ == sizeof buffer_) Flush();
        buffer_[used_++] = c;
    }
    void AddRaw(std::string_view text) {
        if (sizeof buffer_ - used_ < text.size()) {
            Flush();
            if (sizeof buffer_ < text.size()) {
                out_ += text;
                return;
            }
        }
        std::memcpy(buffer_ + used_, text.data(), text.size());
        used_ += text.size();
    }
    void Flush() {
        out_.append(buffer_, used_);
        used_ = 0;
    }
    // Bytes gathered and not yet flushed.
    size_t Used() const { return used_; }

private:
    static constexpr size_t kNumberRoom = 21;  // twenty digits and the tab

    template <typename T>
    void AddNumber(T value) {
        if (sizeof buffer_ - used_ < kNumberRoom) Flush();
        char* end = std::to_chars(buffer_ + used_, buffer_ + sizeof buffer_, value).ptr;
        *end++ = '\t';
        used_ = static_cast<size_t>(end - buffer_);
    }

    std::string& out_;
    char buffer_[128];
    size_t used_ = 0;
};

}  // namespace Tarn
