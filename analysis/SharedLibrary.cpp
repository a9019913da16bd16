#include "analysis/SharedLibrary.h"

#include <dlfcn.h>

#include <map>
#include <mutex>

namespace Tarn::Analysis {

bool SharedLibrary::Resolve(const char* soname, std::initializer_list<Entry> entries,
                            std::string& error) {
    static std::mutex mutex;
    static std::map<std::string, void*> opened;
    std::lock_guard<std::mutex> lock(mutex);
    void*& handle = opened[soname];
    if (!handle) {
        // RTLD_LOCAL: the library's own dependencies stay out of the program's symbol space.
        handle = dlopen(soname, RTLD_NOW | RTLD_LOCAL);
        if (!handle) {
            const char* why = dlerror();
            error = std::string(soname) + " cannot be loaded (" +
                    (why ? why : "no reason given") + "); is its package installed?";
            opened.erase(soname);
            return false;
        }
    }
    for (const Entry& entry : entries) {
        dlerror();
        void* symbol = dlsym(handle, entry.name);
        if (!symbol) {
            error = std::string(soname) + " has no " + entry.name + "; it is not the version " +
                    "this program was built for";
            return false;
        }
        *entry.address = symbol;
    }
    return true;
}

}  // namespace Tarn::Analysis
