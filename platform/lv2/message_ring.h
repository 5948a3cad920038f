#pragma once

#include "dsp/realtime.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace orvane::platform::lv2 {

/// Messages of any size from one thread to another, in order, whole or not at all. Both sides are wait-free
/// and real-time safe.
class MessageRing final {
  public:
    static constexpr std::size_t capacity = 32768;
    /// Holds any message, aligned for whatever it may be.
    struct alignas(std::max_align_t) Message {
        std::array<std::byte, capacity> bytes;
    };

    /// False where there is no room. One thread.
    ORVANE_REALTIME bool write(std::span<const std::byte> message) noexcept {
        const std::size_t at = written.load(std::memory_order_relaxed);
        const std::size_t room = capacity - (at - read.load(std::memory_order_acquire));
        if (message.size() > room || room - message.size() < sizeof(Size)) return false;
        const auto size = static_cast<Size>(message.size());
        copyIn(at, std::as_bytes(std::span(&size, 1)));
        copyIn(at + sizeof size, message);
        written.store(at + sizeof size + message.size(), std::memory_order_release);
        return true;
    }

    /// The size of the next message, which is put into `message`; nothing where there is none. One thread.
    ORVANE_REALTIME std::optional<std::size_t> take(Message& message) noexcept {
        const std::size_t at = read.load(std::memory_order_relaxed);
        if (at == written.load(std::memory_order_acquire)) return std::nullopt;
        Size size = 0;
        copyOut(at, std::as_writable_bytes(std::span(&size, 1)));
        copyOut(at + sizeof size, std::span(message.bytes).first(size));
        read.store(at + sizeof size + size, std::memory_order_release);
        return size;
    }

  private:
    using Size = std::uint32_t;

    void copyIn(std::size_t position, std::span<const std::byte> source) noexcept {
        const std::size_t at = position % capacity;
        const std::size_t untilEnd = std::min(source.size(), capacity - at);
        std::copy_n(source.begin(), untilEnd, storage.begin() + static_cast<std::ptrdiff_t>(at));
        std::copy(source.begin() + static_cast<std::ptrdiff_t>(untilEnd), source.end(), storage.begin());
    }

    void copyOut(std::size_t position, std::span<std::byte> target) const noexcept {
        const std::size_t at = position % capacity;
        const std::size_t untilEnd = std::min(target.size(), capacity - at);
        std::copy_n(storage.begin() + static_cast<std::ptrdiff_t>(at), untilEnd, target.begin());
        std::copy_n(
            storage.begin(), target.size() - untilEnd, target.begin() + static_cast<std::ptrdiff_t>(untilEnd)
        );
    }

    static_assert((capacity & (capacity - 1)) == 0, "positions wrap with it");

    std::array<std::byte, capacity> storage{};
    std::atomic<std::size_t> written = 0;
    std::atomic<std::size_t> read = 0;
};

} // namespace orvane::platform::lv2
