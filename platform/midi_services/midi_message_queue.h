#pragma once

#include "dsp/realtime.h"
#include "platform/base/ring_indices.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>

namespace orvane::platform {

/// A bounded queue of MIDI messages between an audio thread and another thread. Lock-free; one producer
/// thread, one consumer thread; both sides are real-time safe. A message longer than one piece takes several.
class MIDIMessageQueue final {
  public:
    struct Piece {
        std::uint8_t length = 0;
        std::array<std::uint8_t, 31> bytes{};

        [[nodiscard]] std::span<const std::uint8_t> data() const noexcept { return {bytes.data(), length}; }
    };

    /// Appends the message, or nothing if it does not fit; returns whether it did.
    ORVANE_REALTIME bool push(std::span<const std::uint8_t> message) noexcept {
        const std::size_t needed = (message.size() + longestPiece - 1) / longestPiece;
        if (needed > indices.writable()) return false;
        for (std::size_t i = 0; i < needed; ++i) {
            const auto part = message.subspan(i * longestPiece)
                                  .first(std::min(longestPiece, message.size() - i * longestPiece));
            Piece& piece = pieces[indices.writePart(1, i).start];
            piece.length = static_cast<std::uint8_t>(part.size());
            std::ranges::copy(part, piece.bytes.begin());
        }
        indices.commitWrite(needed);
        return true;
    }

    /// Moves the oldest pieces to the start of `taken` and returns their number.
    ORVANE_REALTIME std::size_t pop(std::span<Piece> taken) noexcept {
        const std::size_t count = std::min(indices.readable(), taken.size());
        copyFromRing(pieces.data(), indices.readPart(count), taken.data());
        indices.commitRead(count);
        return count;
    }

  private:
    static constexpr std::size_t capacity = 4096;
    static constexpr std::size_t longestPiece = std::tuple_size_v<decltype(Piece::bytes)>;

    std::array<Piece, capacity> pieces{};
    RingIndices indices{capacity};
};

} // namespace orvane::platform
