#pragma once

#include <atomic>
#include <cstdint>

namespace orvane::platform {

/// What libjack's threads tell of the server; each is one bit.
enum class JackEvent : std::uint32_t {
    bufferSizeChanged = 1,
    /// Ports have gone, or somebody wants to know whether they have.
    portsRemoved = 2,
    serverGone = 4,
    /// From the owner of the waiting thread: no more to come.
    finished = 8,
};

/// Hands events from libjack's threads, on which libjack may not be called, to one thread that waits for
/// them. An event that comes again before it is taken is taken once.
class JackEvents final {
  public:
    /// Any thread.
    void post(JackEvent event) noexcept {
        pending.fetch_or(static_cast<std::uint32_t>(event));
        pending.notify_one();
    }

    /// Waits until there is any and takes all.
    std::uint32_t take() noexcept {
        pending.wait(0);
        return pending.exchange(0);
    }

  private:
    std::atomic<std::uint32_t> pending = 0;
};

/// Whether `event` is among the `taken`.
constexpr bool contains(std::uint32_t taken, JackEvent event) noexcept {
    return (taken & static_cast<std::uint32_t>(event)) != 0;
}

} // namespace orvane::platform
