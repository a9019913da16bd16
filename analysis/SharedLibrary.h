// A system library opened on first use rather than at start-up, so the programs and verbs that
// never need it do not pay for loading it (and the libraries it loads in turn).
#pragma once

#include <initializer_list>
#include <string>

namespace Tarn::Analysis {

class SharedLibrary {
public:
    struct Entry {
        const char* name;
        void** address;
    };

    // Opens `soname` and fills every entry's address with its symbol. Opened once per process
    // and never closed; false with a one-line reason (naming the library) when it is not
    // installed or lacks a symbol.
    static bool Resolve(const char* soname, std::initializer_list<Entry> entries,
                        std::string& error);
};

// The address of a symbol as the function pointer type `F` (dlsym's only contract).
template <typename F>
SharedLibrary::Entry Bind(const char* name, F& function) {
    return {name, reinterpret_cast<void**>(&function)};
}

}  // namespace Tarn::Analysis
