#pragma once

#include "dsp/realtime.h"

#include <algorithm>
#include <atomic>
#include <cstddef>

namespace orvane::platform {

/// Where the producer and the consumer of a bounded ring stand. The ring owns its storage; this says which
/// part of it each side may touch. One producer thread, one consumer thread; wait-free and real-time safe.
class RingIndices final {
  public:
    /// A part of the ring: `count` elements from `start` on, of which `untilEnd` lie before the end of the
    /// storage and the others at its start.
    struct Part {
        std::size_t start = 0;
        std::size_t untilEnd = 0;
        std::size_t count = 0;
    };

    /// `capacity`: elements of the storage, at least 1.
    explicit RingIndices(std::size_t ringCapacity) noexcept : capacity(ringCapacity) {}

    /// How many elements can be written now. Producer.
    ORVANE_REALTIME [[nodiscard]] std::size_t writable() const noexcept {
        return capacity - (written.load(std::memory_order_relaxed) - read.load(std::memory_order_acquire));
    }

    /// `count` free elements, `skipped` after the first. Producer.
    ORVANE_REALTIME [[nodiscard]] Part writePart(std::size_t count, std::size_t skipped = 0) const noexcept {
        return part(advanced(writeStart, skipped), count);
    }

    /// Hands `count` elements that were written to the consumer, all at once. Producer.
    ORVANE_REALTIME void commitWrite(std::size_t count) noexcept {
        writeStart = advanced(writeStart, count);
        written.store(written.load(std::memory_order_relaxed) + count, std::memory_order_release);
    }

    /// How many elements can be read now. Consumer.
    ORVANE_REALTIME [[nodiscard]] std::size_t readable() const noexcept {
        return written.load(std::memory_order_acquire) - read.load(std::memory_order_relaxed);
    }

    /// `count` written elements, `skipped` after the oldest. Consumer.
    ORVANE_REALTIME [[nodiscard]] Part readPart(std::size_t count, std::size_t skipped = 0) const noexcept {
        return part(advanced(readStart, skipped), count);
    }

    /// Frees the oldest `count` elements. Consumer.
    ORVANE_REALTIME void commitRead(std::size_t count) noexcept {
        readStart = advanced(readStart, count);
        read.store(read.load(std::memory_order_relaxed) + count, std::memory_order_release);
    }

  private:
    [[nodiscard]] Part part(std::size_t start, std::size_t count) const noexcept {
        return {start, std::min(count, capacity - start), count};
    }

    [[nodiscard]] std::size_t advanced(std::size_t start, std::size_t count) const noexcept {
        return count < capacity - start ? start + count : start + count - capacity;
    }

    std::size_t capacity;
    /// The producer's, like the number of all elements written; the others are the consumer's.
    std::size_t writeStart = 0;
    std::atomic<std::size_t> written = 0;
    std::size_t readStart = 0;
    std::atomic<std::size_t> read = 0;
};

/// Copies `source` into a part of a ring's storage. Real-time safe.
template <class Element>
void copyIntoRing(const Element* source, Element* storage, const RingIndices::Part& part) noexcept {
    std::copy_n(source, part.untilEnd, storage + part.start);
    std::copy_n(source + part.untilEnd, part.count - part.untilEnd, storage);
}

/// Copies a part of a ring's storage into `target`. Real-time safe.
template <class Element>
void copyFromRing(const Element* storage, const RingIndices::Part& part, Element* target) noexcept {
    std::copy_n(storage + part.start, part.untilEnd, target);
    std::copy_n(storage, part.count - part.untilEnd, target + part.untilEnd);
}

} // namespace orvane::platform
