#include "platform/lv2/plugin_library.h"

#include "platform/lv2/shared_library.h"

#include <fmt/format.h>

#include <mutex>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

/// Where to find the function of each precision: some distributions build it into the library itself.
constexpr struct {
    const char* function;
    const char* libraries[2];
} planners[] = {
    {"fftw_make_planner_thread_safe", {"libfftw3_threads.so.3", "libfftw3.so.3"}},
    {"fftwf_make_planner_thread_safe", {"libfftw3f_threads.so.3", "libfftw3f.so.3"}}};

using MakeThreadSafe = void (*)();

/// Makes the planner of the FFTW library thread-safe, in single and double precision, if it is installed: all
/// plugins share the planner, each from its own thread. Does so once per process; must be called before the
/// first plugin is instantiated. Any thread.
void makeTransformPlannersThreadSafe() {
    static std::once_flag isMade;
    std::call_once(isMade, [] {
        for (const auto& planner : planners)
            for (const char* const name : planner.libraries) {
                const auto library = SharedLibrary::open(name);
                if (!library) continue;
                const auto make = library.value().function<MakeThreadSafe>(planner.function);
                if (make == nullptr) continue;
                make();
                break;
            }
    });
}

} // namespace

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
