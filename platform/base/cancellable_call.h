#pragma once

#include <functional>
#include <mutex>
#include <utility>

namespace orvane::platform {

/// A callback until it is cancelled; calls and the cancellation exclude each other. Any thread, but not
/// cancelled from within its own call.
template <class... Arguments>
class CancellableCall final {
  public:
    explicit CancellableCall(std::function<void(Arguments...)> function) : callee(std::move(function)) {}

    void operator()(Arguments... arguments) {
        const std::scoped_lock lock(mutex);
        if (callee) callee(arguments...);
    }

    /// Waits for a call that is under way; none comes after.
    void cancel() {
        const std::scoped_lock lock(mutex);
        callee = nullptr;
    }

  private:
    std::mutex mutex;
    std::function<void(Arguments...)> callee;
};

} // namespace orvane::platform
