#include "foundation/Exception.h"

#include <cerrno>
#include <cstring>
#include <memory>

#if __has_include(<cxxabi.h>)
#include <cxxabi.h>
#define LANG_HAVE_CXXABI 1
#endif

namespace Lang {

Exception::Exception(std::string message, std::string location)
    : message_(std::move(message)), location_(std::move(location)) {}

Exception::Exception(const Exception& other)
    : std::exception(other), message_(other.what()), location_(other.location_) {}

Exception& Exception::operator=(const Exception& other) {
    if (this != &other) {
        message_ = other.what();
        location_ = other.location_;
    }
    return *this;
}

Exception::~Exception() = default;

const char* Exception::what() const noexcept {
    return message_.c_str();
}

void Exception::setMessage(std::string message) {
    message_ = message.empty() ? std::string("(null message)") : std::move(message);
}

void Exception::setLocation(std::string location) {
    location_ = std::move(location);
}

const char* Exception::location() const noexcept {
    return location_.c_str();
}

const std::string& Exception::defaultLocation() {
    static const std::string location = "Unknown Location";
    return location;
}

std::string printableTypeName(const std::type_info& type) {
    std::string name = type.name();
#ifdef LANG_HAVE_CXXABI
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    if (status == 0 && demangled) name = demangled.get();
    // Readers know these names with their kind in front; the ABI's type_info subclass tells it.
    if (dynamic_cast<const abi::__class_type_info*>(&type) != nullptr) return "class " + name;
    if (dynamic_cast<const abi::__enum_type_info*>(&type) != nullptr) return "enum " + name;
#endif
    return name;
}

NullPointerException::NullPointerException(const std::type_info& type, std::string location)
    : NullPointerException(printableTypeName(type), std::move(location)) {}

NullPointerException::NullPointerException(std::string_view printableTypeName, std::string location)
    : Exception("NULL " + std::string(printableTypeName) + " pointer", std::move(location)) {}

const char* errnoText(int errnum) {
    switch (errnum) {
        case 0:
            return "No Error";
        case ENOENT:
            return "No such file or directory. The specified file or directory does not exist or "
                   "cannot be found. This message can occur whenever a specified file does not "
                   "exist or a component of a path does not specify an existing directory.";
        case E2BIG:
            return "Argument list too long.";
        case ENOEXEC:
            return "Exec format error. An attempt was made to execute a file that is not "
                   "executable or that has an invalid executable-file format.";
        case EBADF:
            return "Bad file number. There are two possible causes: 1) The specified file "
                   "descriptor is not a valid value or does not refer to an open file. 2) An "
                   "attempt was made to write to a file or device opened for read-only access.";
        case ECHILD:
            return "No spawned processes.";
        case EAGAIN:
            return "No more processes. An attempt to create a new process failed because there "
                   "are no more process slots, or there is not enough memory, or the maximum "
                   "nesting level has been reached.";
        case ENOMEM:
            return "Not enough core. Not enough memory is available for the attempted operator. "
                   "For example, this message can occur when insufficient memory is available "
                   "to execute a child process, or when the allocation request in a _getcwd "
                   "call cannot be satisfied.";
        case EACCES:
            return "Permission denied. The file's permission setting does not allow the "
                   "specified access. This error signifies that an attempt was made to access a "
                   "file (or, in some cases, a directory) in a way that is incompatible with the "
                   "file's attributes. For example, the error can occur when an attempt is made "
                   "to read from a file that is not open, to open an existing read-only file for "
                   "writing, or to open a directory instead of a file.";
        case EEXIST:
            return "Files exist. An attempt has been made to create a file that already exists. "
                   "For example, the _O_CREAT and _O_EXCL flags are specified in an _open call, "
                   "but the named file already exists.";
        case EXDEV:
            return "Cross-device link. An attempt was made to move a file to a different device "
                   "(using the rename function).";
        case EINVAL:
            return "Invalid argument. An invalid value was given for one of the arguments to a "
                   "function. For example, the value given for the origin when positioning a "
                   "file pointer (by means of a call to fseek) is before the beginning of the "
                   "file.";
        case EMFILE:
            return "Too many open files. No more file descriptors are available, so no more "
                   "files can be opened.";
        case ENOSPC:
            return "No space left on device. No more space for writing is available on the "
                   "device (for example, when the disk is full).";
        case EDOM:
            return "Math argument.";
        case ERANGE:
            return "Result too large. An argument to a math function is too large, resulting in "
                   "partial or total loss of significance in the result. This error can also "
                   "occur in other functions when an argument is larger than expected (for "
                   "example, when the buffer argument to _getcwd is longer than expected).";
        case EDEADLK:
            return "Resource deadlock would occur. The argument to a math function is not in the "
                   "domain of the function.";
        case EILSEQ:
            return "Illegal sequence of bytes (for example, in an MBCS string).";
#ifdef STRUNCATE
        case STRUNCATE:
            return "A string copy or concatenation resulted in a truncated string.";
#endif
        default:
            return "Unknown Errno";
    }
}

ErrnoException::ErrnoException(std::string_view context, int errnum)
    : Exception("Unknown Exception", defaultLocation()), errnum_(errnum) {
    setMessage(std::string(context) + ": " + errnoText(errnum));
}

ErrnoException::ErrnoException(std::string_view context, int errnum, std::string location)
    : ErrnoException(context, errnum) {
    setLocation(std::move(location));
}

namespace {

bool isIdentifierChar(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

std::string_view trimName(std::string_view name) {
    while (!name.empty() && (name.front() == '*' || name.front() == '&' || name.front() == ' '))
        name.remove_prefix(1);
    while (!name.empty() && name.back() == ' ') name.remove_suffix(1);
    return name;
}

// The root of the source tree as this file was compiled, so other files' paths can be made
// relative to it. Empty when the build names files some other way; sourceName then falls back to
// the bare file name.
std::string_view sourceRoot() {
    constexpr std::string_view self = __FILE__;
    constexpr std::string_view tail = "foundation/Exception.cpp";
    if (self.size() >= tail.size() && self.substr(self.size() - tail.size()) == tail)
        return self.substr(0, self.size() - tail.size());
    return {};
}

}  // namespace

std::string qualifiedFunctionName(std::string_view pretty) {
    constexpr std::string_view kOperator = "operator";
    constexpr std::string_view kAnonymous = "(anonymous namespace)";
    size_t start = 0;
    int depth = 0;
    for (size_t i = 0; i < pretty.size(); ++i) {
        if (depth == 0 && pretty.substr(i, kOperator.size()) == kOperator &&
            (i == 0 || !isIdentifierChar(pretty[i - 1])) &&
            (i + kOperator.size() == pretty.size() ||
             !isIdentifierChar(pretty[i + kOperator.size()]))) {
            // Operator names hold the very characters the scan below steers by: skip the symbol
            // ("()" included) and stop at the parameter list.
            size_t end = i + kOperator.size();
            if (pretty.substr(end, 2) == "()") end += 2;
            while (end < pretty.size() && pretty[end] != '(') ++end;
            return std::string(trimName(pretty.substr(start, end - start)));
        }
        const char c = pretty[i];
        if (c == '<') {
            ++depth;
        } else if (c == '>' && depth > 0) {
            --depth;
        } else if (depth == 0 && c == ' ') {
            start = i + 1;
        } else if (depth == 0 && c == '(') {
            if (pretty.substr(i, kAnonymous.size()) == kAnonymous) {
                i += kAnonymous.size() - 1;
                continue;
            }
            return std::string(trimName(pretty.substr(start, i - start)));
        }
    }
    return std::string(trimName(pretty.substr(start)));
}

std::string sourceName(std::string_view file) {
    const std::string_view root = sourceRoot();
    if (!root.empty() && file.substr(0, root.size()) == root) {
        file.remove_prefix(root.size());
        // Drop the library folder: locations are relative to the library they come from.
        const size_t slash = file.find_first_of("/\\");
        if (slash != std::string_view::npos) file.remove_prefix(slash + 1);
    } else {
        const size_t slash = file.find_last_of("/\\");
        if (slash != std::string_view::npos) file.remove_prefix(slash + 1);
    }
    const size_t dot = file.find_last_of('.');
    const size_t lastSlash = file.find_last_of("/\\");
    if (dot != std::string_view::npos && (lastSlash == std::string_view::npos || dot > lastSlash))
        file = file.substr(0, dot);
    return std::string(file);
}

std::string makeLocation(std::string_view sourceFile, unsigned line,
                         std::string_view prettyFunction) {
    return sourceName(sourceFile) + "(" + std::to_string(line) +
           ") : " + qualifiedFunctionName(prettyFunction);
}

}  // namespace Lang

namespace Win32 {

Exception::Exception(uint32_t code, std::string location)
    : Lang::Exception(std::string(), std::move(location)), code_(code) {}

const char* Exception::what() const noexcept {
    if (!lookedUp_ && message_.empty()) {
        lookedUp_ = true;
        try {
            message_ = systemMessageText(code_);
        } catch (...) {
            // The message is a courtesy; failing to get it must not turn into a second failure.
        }
    }
    return message_.c_str();
}

std::string systemMessageText(uint32_t) {
    return {};
}

}  // namespace Win32
