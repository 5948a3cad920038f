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

/// A line as passed to a sink.
struct LogLine {
    LogLevel level;
    /// The part of the application that logs; a string literal.
    std::string_view category;
    std::string_view text;
    /// The first part of the text, which names its subject, if it was posted in parts.
    std::string_view subject = {};
};

/// The log. Control threads write at once; audio threads post to a queue of fixed size that the control side
/// writes at its next `flush`. The sink decides where lines go. Must outlive everything that logs.
class SystemLog final {
  public:
    using Sink = std::function<void(const LogLine&)>;

    explicit SystemLog(Sink lineSink);

    /// Posts the joined parts, cut to `longestLine` bytes; `category` must be a literal. If the queue is
    /// full, the line is dropped and counted. Any thread, real-time safe.
    ORVANE_REALTIME void
    post(LogLevel level, std::string_view category, std::initializer_list<std::string_view> parts) noexcept;

    /// Writes all posted lines in order, and the number of dropped lines. One control thread.
    void flush();

    static constexpr std::size_t longestLine = 512;

  private:
    /// A bounded queue with many producers and one consumer: a slot's turn shows whether it is free for a
    /// producer's position or filled for the consumer's.
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

/// Writes lines to standard error, with priorities for the journal if it is the reader.
SystemLog::Sink standardErrorSink();

/// Passes errors on to `sink`, and other lines only after an error about the same subject: success is worth a
/// line only after a failure.
SystemLog::Sink quietUntilAnError(SystemLog::Sink sink);

} // namespace orvane::platform
