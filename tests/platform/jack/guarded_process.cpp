#include "support/allocation_guard.h"

#include <dlfcn.h>
#include <jack/jack.h>

#include <atomic>
#include <deque>
#include <mutex>

// Overrides libjack's function of the same name in this program, so that every process callback runs under
// the allocation guard.

namespace {

struct Callback {
    JackProcessCallback function;
    void* argument;
};

/// The server orders the clients' callbacks, which ThreadSanitizer does not see.
std::atomic<unsigned> order = 0;

int runGuarded(jack_nframes_t frameCount, void* callback) {
    const auto& [function, argument] = *static_cast<const Callback*>(callback);
    const orvane::test::AllocationGuard guard;
    order.load();
    const int result = function(frameCount, argument);
    order.fetch_add(1);
    return result;
}

/// Never freed: libjack uses it until its client has closed, which is not visible here.
void* keep(const Callback& callback) {
    static std::mutex mutex;
    // Never destroyed: callbacks may still run while the program ends.
    static auto* const kept = new std::deque<Callback>;
    const std::scoped_lock lock(mutex);
    return &kept->emplace_back(callback);
}

} // namespace

extern "C" int
jack_set_process_callback(jack_client_t* client, JackProcessCallback function, void* argument) {
    using Function = int (*)(jack_client_t*, JackProcessCallback, void*);
    static const auto set = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "jack_set_process_callback"));
    if (function == nullptr) return set(client, nullptr, nullptr);
    return set(client, runGuarded, keep({function, argument}));
}
