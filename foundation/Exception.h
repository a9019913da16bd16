// The foundation's exception family: every failure carries a message and the place it was
// thrown from, and every throw leaves a trace record first (see LANG_THROW).
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "foundation/Trace.h"

namespace Lang {

class Exception : public std::exception {
public:
    // The message is kept as given, even empty: Win32::Exception starts empty and fills it later.
    Exception(std::string message, std::string location);
    // Copies any member of the family. The message is taken through what(), so an exception whose
    // text is filled in lazily arrives with its text.
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    ~Exception() override;

    const char* what() const noexcept override;
    // An empty message becomes "(null message)": a blank message box helps nobody.
    virtual void setMessage(std::string message);
    virtual void setLocation(std::string location);
    // "<source>(<line>) : <qualified function>", or "Unknown Location".
    virtual const char* location() const noexcept;

    // "Unknown Location", built once and shared by every exception that has no better place.
    static const std::string& defaultLocation();

protected:
    // Mutable because a lazily filled message is written from inside what().
    mutable std::string message_;
    std::string location_;
};

// Raised where an empty reference is followed; names the pointee type the way a user of the
// library reads it ("NULL class System::Io::File pointer").
class NullPointerException : public Exception {
public:
    NullPointerException(const std::type_info& type, std::string location);
    NullPointerException(std::string_view printableTypeName, std::string location);
};

// "class System::Io::File" for a class, "enum X" for an enumeration, the plain name otherwise.
std::string printableTypeName(const std::type_info& type);

// The text for a run-time error number, word for word as users of this library have always
// seen it; "Unknown Errno" for numbers without one. The table is keyed by the symbolic errno
// names, so on a platform whose numbers differ a condition keeps its own text; a condition this
// platform cannot report (the truncated-string error) simply never appears.
const char* errnoText(int errnum);

// context + ": " + errnoText(errnum).
class ErrnoException : public Exception {
public:
    ErrnoException(std::string_view context, int errnum);
    ErrnoException(std::string_view context, int errnum, std::string location);
    int errnum() const noexcept { return errnum_; }

private:
    int errnum_;
};

// Location texts: the source path below its library folder without the extension, the line in
// parentheses, " : " and the qualified function name, e.g. "File(57) : System::Io::File::open".
std::string makeLocation(std::string_view sourceFile, unsigned line,
                         std::string_view prettyFunction);
// "System::Io::File::open" from a compiler's decorated function signature.
std::string qualifiedFunctionName(std::string_view prettyFunction);
// "File" from ".../foundation/File.cpp"; "Mspl/Data" from ".../mmss/Mspl/Data.cpp".
std::string sourceName(std::string_view sourceFile);

// The throw convention: trace "<location>: Throwing <expression>\r\n", then throw E built from
// `args` and the location. Use it through LANG_THROW, which supplies location and expression.
template <class E, class... Args>
[[noreturn]] void throwTraced(std::string location, std::string_view expression, Args&&... args) {
    const std::string fixed = ": Throwing " + std::string(expression) + "\r\n";
    trace("%s%s", location.c_str(), fixed.c_str());
    if constexpr (std::is_constructible_v<E, Args&&..., std::string>) {
        throw E(std::forward<Args>(args)..., std::move(location));
    } else {
        E error(std::forward<Args>(args)...);
        error.setLocation(std::move(location));
        throw error;
    }
}

}  // namespace Lang

namespace Win32 {

// A system error code. Its message is looked up on the first what(); this build has no system
// message table, so the message stays empty. what() never throws either way.
class Exception : public Lang::Exception {
public:
    explicit Exception(uint32_t code, std::string location = Lang::Exception::defaultLocation());
    uint32_t code() const noexcept { return code_; }
    const char* what() const noexcept override;

private:
    uint32_t code_;
    mutable bool lookedUp_ = false;
};

// The system's text for `code`, or empty when it has none (always, on this platform).
std::string systemMessageText(uint32_t code);

}  // namespace Win32

#define LANG_LOCATION() ::Lang::makeLocation(__FILE__, __LINE__, __PRETTY_FUNCTION__)

// LANG_THROW(Lang::Exception, "Illegal Open Mode") traces
//   "<location>: Throwing Lang::Exception("Illegal Open Mode")\r\n"
// and throws Lang::Exception("Illegal Open Mode", <location>).
#define LANG_THROW(Type, ...) \
    ::Lang::throwTraced<Type>(LANG_LOCATION(), #Type "(" #__VA_ARGS__ ")", __VA_ARGS__)
