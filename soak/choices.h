#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <span>

namespace orvane::soak {

/// A source of random decisions: a seeded generator, or given bytes (as from a fuzzer), after which every
/// decision is the first option. One thread.
class Choices final {
  public:
    explicit Choices(std::uint64_t seed) : generator(seed) {}
    explicit Choices(std::span<const std::uint8_t> bytes) : rest(bytes) {}

    /// Whether the given bytes are used up.
    [[nodiscard]] bool areOver() const { return !generator && rest.empty(); }

    /// Returns a number below `count`, which must be 1 to 65536.
    std::size_t below(std::size_t count) { return (count <= 256 ? byte() : twoBytes()) % count; }

    /// Returns true once in `times` on average (1 to 65536); false when the bytes are used up.
    bool oneIn(std::size_t times) { return below(times) == times - 1 && !areOver(); }

    /// Returns a number from `low` to `high`, both included.
    double between(double low, double high) {
        return low + (high - low) * static_cast<double>(twoBytes()) / 65535.0;
    }

    /// Returns an item of a list, which must not be empty.
    template <class List>
    auto& of(List& list) {
        return list[below(std::size(list))];
    }

  private:
    std::size_t byte() {
        if (generator) return (*generator)() & 0xFFU;
        if (rest.empty()) return 0;
        const std::uint8_t first = rest.front();
        rest = rest.subspan(1);
        return first;
    }
    std::size_t twoBytes() {
        const std::size_t high = byte();
        return (high << 8U) | byte();
    }

    std::optional<std::mt19937_64> generator;
    std::span<const std::uint8_t> rest;
};

} // namespace orvane::soak
