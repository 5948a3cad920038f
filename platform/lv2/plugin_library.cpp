#include "platform/lv2/plugin_library.h"

#include "platform/lv2/shared_library.h"
#include "platform/lv2/transform_planner.h"

#include <fmt/format.h>

#include <utility>

namespace orvane::platform::lv2 {

Result<PluginLibrary> PluginLibrary::load(const PluginDescription& description) {
    const auto library = SharedLibrary::open(description.libraryPath);
    if (!library)
        return Error{
            fmt::format("\"{}\" could not be loaded: {}.", description.name, library.error().description)};
    makeTransformPlannersThreadSafe();
    const auto getDescriptor = library.value().function<LV2_Descriptor_Function>("lv2_descriptor");
    const auto getLibrary = library.value().function<LV2_Lib_Descriptor_Function>("lv2_lib_descriptor");

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

} // namespace orvane::platform::lv2
