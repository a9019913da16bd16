// LAF::LafTextDest: where the lines of an LTE available file go, and its two sinks: the file
// image a save writes (LafTextOutFile) and the string the text view shows (LafTextOutCString).
#pragma once

#include <string>

#include "roaming_list/RLFile.h"

namespace Tarn::LAF {

class LafTextDest {
public:
    virtual ~LafTextDest() = default;
    virtual void Append(const std::string& text) = 0;
    virtual std::string LineTerminator() const = 0;
};

// Writes at the file's position, extending it.
class LafTextOutFile : public LafTextDest {
public:
    explicit LafTextOutFile(CRLFile& file) : file_(file) {}
    void Append(const std::string& text) override { file_.Write(text.data(), text.size()); }
    std::string LineTerminator() const override { return "\r\n"; }

private:
    CRLFile& file_;
};

class LafTextOutCString : public LafTextDest {
public:
    explicit LafTextOutCString(std::string& out) : out_(out) {}
    void Append(const std::string& text) override { out_ += text; }
    std::string LineTerminator() const override { return "\r\n"; }

private:
    std::string& out_;
};

}  // namespace Tarn::LAF
