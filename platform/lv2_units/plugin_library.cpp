#include "platform/lv2_units/plugin_library.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <cstdint>
#include <string_view>
#include <utility>

namespace orvane::platform::lv2_units {

namespace {

/// The descriptor of the plugin among those that `at` gives by index; null where it is not there.
template <class At>
const LV2_Descriptor* findDescriptor(std::string_view uri, At at) {
    for (std::uint32_t i = 0;; ++i) {
        const LV2_Descriptor* const descriptor = at(i);
        if (descriptor == nullptr || descriptor->URI == uri) return descriptor;
    }
}

} // namespace

Result<PluginLibrary> PluginLibrary::load(const PluginDescription& description) {
    if (description.libraryPath.empty())
        return Error{fmt::format("\"{}\" could not be loaded: it names no library.", description.name)};
    // Never closed: libraries leave threads and destructors behind that a removed one would take us down
    // with.
    void* const library = ::dlopen(description.libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        return Error{fmt::format("\"{}\" could not be loaded: {}.", description.name, ::dlerror())};
    const auto getDescriptor = reinterpret_cast<LV2_Descriptor_Function>(::dlsym(library, "lv2_descriptor"));
    const auto getLibrary =
        reinterpret_cast<LV2_Lib_Descriptor_Function>(::dlsym(library, "lv2_lib_descriptor"));

    LibraryDescriptor libraryDescriptor;
    const LV2_Descriptor* descriptor = nullptr;
    if (getLibrary != nullptr) {
        const LV2_Feature* const none[] = {nullptr};
        libraryDescriptor = LibraryDescriptor(
            getLibrary(description.bundlePath.c_str(), none),
            [](const LV2_Lib_Descriptor* given) {
                if (given != nullptr && given->cleanup != nullptr) given->cleanup(given->handle);
            }
        );
        if (libraryDescriptor)
            descriptor = findDescriptor(description.uri, [&](std::uint32_t i) {
                return libraryDescriptor->get_plugin(libraryDescriptor->handle, i);
            });
    } else if (getDescriptor != nullptr) {
        descriptor = findDescriptor(description.uri, getDescriptor);
    }
    if (descriptor == nullptr)
        return Error{fmt::format(
            "\"{}\" could not be loaded: {} does not have it.", description.name, description.libraryPath
        )};
    return PluginLibrary(descriptor, std::move(libraryDescriptor));
}

} // namespace orvane::platform::lv2_units
