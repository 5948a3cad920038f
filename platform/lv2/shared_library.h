#pragma once

#include "dsp/realtime.h"
#include "platform/base/result.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace orvane::platform::lv2 {

/// A library with plugin code. It is never unloaded: libraries leave threads and destructors behind that
/// would crash the process.
class SharedLibrary final {
  public:
    /// The error is the end of a sentence. Any thread; slow.
    static Result<SharedLibrary> open(const std::string& path);

    /// The function that the library exports under a name; null if it has none.
    template <class Function>
    [[nodiscard]] Function function(const char* name) const {
        return reinterpret_cast<Function>(find(name));
    }

  private:
    explicit SharedLibrary(void* openedLibrary) : library(openedLibrary) {}
    [[nodiscard]] void* find(const char* name) const;

    void* library;
};

/// Returns the descriptor with the URI, with `at` returning descriptors by index; null if there is none.
template <class At>
auto findDescriptor(std::string_view uri, At at) {
    for (std::uint32_t i = 0;; ++i) {
        const auto* const descriptor = at(i);
        if (descriptor == nullptr || descriptor->URI == uri) return descriptor;
    }
}

/// Calls into a plugin. Returns false if the call throws: exceptions must not leave a plugin's code. Any
/// thread, real-time safe if the call is.
template <class Call>
ORVANE_REALTIME bool callPlugin(const Call& call) noexcept {
    try {
        call();
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace orvane::platform::lv2
