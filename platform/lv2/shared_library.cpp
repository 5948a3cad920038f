#include "platform/lv2/shared_library.h"

#include <dlfcn.h>

namespace orvane::platform::lv2 {

Result<SharedLibrary> SharedLibrary::open(const std::string& path) {
    if (path.empty()) return Error{"it names no library"};
    void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return Error{::dlerror()};
    return SharedLibrary(library);
}

void* SharedLibrary::find(const char* name) const {
    return ::dlsym(library, name);
}

} // namespace orvane::platform::lv2
