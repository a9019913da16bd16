// The diagnostic trace: one-line records handed to a replaceable sink, discarded unless someone
// (a debugger hook, a test) installs one.
#pragma once

#include <functional>
#include <string_view>
#include <utility>

namespace Lang {

// Receives each finished record, line ending included.
using TraceSink = std::function<void(std::string_view record)>;

// Installs `sink` (an empty one discards) and returns the sink it replaces, so a caller can put
// the old one back when it is done.
TraceSink setTraceSink(TraceSink sink);

// Formats a record printf-style and hands it to the sink. Never throws: tracing runs on the way
// to a throw, and a failure there must not replace the exception being raised.
void trace(const char* format, ...) noexcept
#if defined(__GNUC__) || defined(__clang__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

// Installs a sink for the lifetime of the object and restores the previous one afterwards.
class ScopedTraceSink {
public:
    explicit ScopedTraceSink(TraceSink sink) : previous_(setTraceSink(std::move(sink))) {}
    ~ScopedTraceSink() { setTraceSink(std::move(previous_)); }
    ScopedTraceSink(const ScopedTraceSink&) = delete;
    ScopedTraceSink& operator=(const ScopedTraceSink&) = delete;

private:
    TraceSink previous_;
};

}  // namespace Lang
