#pragma once

#include "dsp/realtime.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string_view>

namespace orvane::platform {

enum class LogLevel : std::uint8_t { standard, error };

/// The application's identifier in logs.
inline constexpr std::string_view logSubsystem = "app.orvane.mixer";

/// One line as a sink gets it.
struct LogLine {
    LogLevel level;
    /// Which part of the application speaks; a literal.
    std::string_view category;
    std::string_view text;
    /// What the text begins with if it was posted in several parts: the thing that it is about.
    std::string_view subject = {};
};

/// The log. Control threads write at once; audio threads post into a queue of fixed size that the control
/// side writes out at its next `flush`. Whoever makes it decides where lines go; it outlives everything that
/// logs.
class SystemLog final {
  public:
    using Sink = std::function<void(const LogLine&)>;

    explicit SystemLog(Sink lineSink);

    /// Posts the joined parts, cut to `longestLine` bytes; `category` is a literal. A line that finds the
    /// queue full is counted and dropped. Any thread, real-time safe.
    ORVANE_REALTIME void
    post(LogLevel level, std::string_view category, std::initializer_list<std::string_view> parts) noexcept;

    /// Writes out what has been posted, in order, and how many lines were dropped. One control thread.
    void flush();

    static constexpr std::size_t longestLine = 512;

  private:
    /// A bounded queue for many producers and one consumer: a slot's turn tells whether it is free for the
    /// position that a producer claimed, or holds what the consumer waits for.
    struct Slot {
        std::atomic<std::size_t> turn;
        LogLevel level;
        std::string_view category;
        std::size_t length;
        std::size_t subjectLength;
        std::array<char, longestLine> text;
    };

    Slot* claim() noexcept;

    static constexpr std::size_t capacity = 128;

    Sink sink;
    std::array<Slot, capacity> slots;
    std::atomic<std::size_t> tail = 0;
    std::size_t head = 0;
    std::atomic<std::size_t> dropped = 0;
};

/// Writes lines to standard error, with the priorities that the journal reads when it is what listens there.
SystemLog::Sink standardErrorSink();

/// Passes errors on to `sink`, and other lines only from the first error about the same subject on: that all
/// is well is worth a line only where it was not.
SystemLog::Sink quietUntilAnError(SystemLog::Sink sink);

} // namespace orvane::platform
