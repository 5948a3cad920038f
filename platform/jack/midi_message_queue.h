#pragma once

#include "dsp/realtime.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

namespace orvane::platform::jack {

/// A bounded queue of MIDI messages between an audio thread and another one. Lock-free; one producer thread,
/// one consumer thread; both ends are real-time safe. A message longer than a piece takes several.
class MIDIMessageQueue final {
  public:
    struct Piece {
        std::uint8_t length = 0;
        std::array<std::uint8_t, 31> bytes{};

        [[nodiscard]] std::span<const std::uint8_t> data() const noexcept { return {bytes.data(), length}; }
    };

    /// Appends the message, or nothing where it does not fit; whether it did.
    ORVANE_REALTIME bool push(std::span<const std::uint8_t> message) noexcept {
        const std::size_t tail = pushed.load(std::memory_order_relaxed);
        const std::size_t room = capacity - (tail - popped.load(std::memory_order_acquire));
        const std::size_t needed = (message.size() + longestPiece - 1) / longestPiece;
        if (needed > room) return false;
        for (std::size_t i = 0; i < needed; ++i) {
            const auto part = message.subspan(i * longestPiece)
                                  .first(std::min(longestPiece, message.size() - i * longestPiece));
            Piece& piece = pieces[(tail + i) % capacity];
            piece.length = static_cast<std::uint8_t>(part.size());
            std::ranges::copy(part, piece.bytes.begin());
        }
        pushed.store(tail + needed, std::memory_order_release);
        return true;
    }

    /// Moves the oldest pieces into the start of `taken` and returns how many those were.
    ORVANE_REALTIME std::size_t pop(std::span<Piece> taken) noexcept {
        const std::size_t head = popped.load(std::memory_order_relaxed);
        const std::size_t count = std::min(pushed.load(std::memory_order_acquire) - head, taken.size());
        for (std::size_t i = 0; i < count; ++i)
            taken[i] = pieces[(head + i) % capacity];
        popped.store(head + count, std::memory_order_release);
        return count;
    }

  private:
    static constexpr std::size_t capacity = 4096;
    static constexpr std::size_t longestPiece = std::tuple_size_v<decltype(Piece::bytes)>;

    std::array<Piece, capacity> pieces{};
    std::atomic<std::size_t> pushed = 0;
    std::atomic<std::size_t> popped = 0;
};

} // namespace orvane::platform::jack
