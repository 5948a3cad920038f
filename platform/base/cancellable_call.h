#pragma once

#include <functional>
#include <mutex>
#include <utility>

namespace orvane::platform {

/// A callback that can be cancelled; calls and cancellation exclude each other. Any thread, but must not be
/// cancelled from within its own call.
template <class... Arguments>
class CancellableCall final {
  public:
    explicit CancellableCall(std::function<void(Arguments...)> function) : callee(std::move(function)) {}

    void operator()(Arguments... arguments) {
        const std::scoped_lock lock(mutex);
        if (callee) callee(arguments...);
    }

    /// Waits for a call in progress; none follows.
    void cancel() {
        const std::scoped_lock lock(mutex);
        callee = nullptr;
    }

  private:
    std::mutex mutex;
    std::function<void(Arguments...)> callee;
};

} // namespace orvane::platform
