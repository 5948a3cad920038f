#include "platform/lv2/transform_planner.h"

#include "platform/lv2/shared_library.h"

#include <mutex>

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

} // namespace

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

} // namespace orvane::platform::lv2
