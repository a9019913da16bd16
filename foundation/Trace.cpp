#include "foundation/Trace.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>

namespace Lang {
namespace {

TraceSink& currentSink() {
    static TraceSink sink;
    return sink;
}

void formatInto(std::string& out, const char* format, va_list args) {
    va_list copy;
    va_copy(copy, args);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (length <= 0) return;
    out.resize(static_cast<size_t>(length) + 1);
    std::vsnprintf(out.data(), out.size(), format, args);
    out.resize(static_cast<size_t>(length));
}

}  // namespace

TraceSink setTraceSink(TraceSink sink) {
    TraceSink previous = std::move(currentSink());
    currentSink() = std::move(sink);
    return previous;
}

void trace(const char* format, ...) noexcept {
    const TraceSink& sink = currentSink();
    // Formatting costs something; with nobody listening there is nothing to format for.
    if (!sink || format == nullptr) return;
    std::string record;
    bool formatted = true;
    va_list args;
    va_start(args, format);
    try {
        formatInto(record, format, args);
    } catch (...) {
        formatted = false;
    }
    va_end(args);
    if (!formatted) return;
    try {
        sink(record);
    } catch (...) {
        // A sink that fails loses its record; the caller is usually about to throw already.
    }
}

}  // namespace Lang
