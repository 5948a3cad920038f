#pragma once

#include "dsp/realtime.h"
#include "platform/base/ring_indices.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace orvane::platform::lv2 {

/// Transfers messages of any size from one thread to another, in order, each whole or not at all. Both sides
/// are wait-free and real-time safe.
class MessageRing final {
  public:
    static constexpr std::size_t capacity = 32768;
    /// Storage for one message, aligned for any type.
    struct alignas(std::max_align_t) Message {
        std::array<std::byte, capacity> bytes;
    };

    /// Returns false if the message does not fit. Only safely called on the producer thread.
    ORVANE_REALTIME bool write(std::span<const std::byte> message) noexcept {
        const std::size_t room = indices.writable();
        if (message.size() > room || room - message.size() < sizeof(Size)) return false;
        const auto size = static_cast<Size>(message.size());
        copyIntoRing(
            std::as_bytes(std::span(&size, 1)).data(), storage.data(), indices.writePart(sizeof size)
        );
        copyIntoRing(message.data(), storage.data(), indices.writePart(size, sizeof size));
        indices.commitWrite(sizeof size + size);
        return true;
    }

    /// Copies the next message to `message` and returns its size; absent if the ring is empty. Only safely
    /// called on the consumer thread.
    ORVANE_REALTIME std::optional<std::size_t> take(Message& message) noexcept {
        if (indices.readable() == 0) return std::nullopt;
        Size size = 0;
        copyFromRing(
            storage.data(), indices.readPart(sizeof size), std::as_writable_bytes(std::span(&size, 1)).data()
        );
        copyFromRing(storage.data(), indices.readPart(size, sizeof size), message.bytes.data());
        indices.commitRead(sizeof size + size);
        return size;
    }

  private:
    using Size = std::uint32_t;

    std::array<std::byte, capacity> storage{};
    RingIndices indices{capacity};
};

} // namespace orvane::platform::lv2
