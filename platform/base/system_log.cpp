#include "platform/base/system_log.h"

#include "platform/base/plain_text.h"
#include "platform/base/standard_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <set>
#include <string>
#include <utility>

namespace orvane::platform {

SystemLog::SystemLog(Sink lineSink) : sink(std::move(lineSink)) {
    for (std::size_t i = 0; i < capacity; ++i)
        slots[i].turn.store(i, std::memory_order_relaxed);
}

void SystemLog::post(
    LogLevel level, std::string_view category, std::initializer_list<std::string_view> parts
) noexcept {
    Slot* const slot = claim();
    if (slot == nullptr) {
        dropped.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    slot->level = level;
    slot->category = category;
    slot->length = 0;
    slot->subjectLength = parts.size() > 1 ? std::min(parts.begin()->size(), longestLine) : 0;
    for (const std::string_view part : parts) {
        const std::size_t fits = std::min(part.size(), longestLine - slot->length);
        std::copy_n(part.data(), fits, slot->text.data() + slot->length);
        slot->length += fits;
    }
    slot->turn.fetch_add(1, std::memory_order_release);
}

SystemLog::Slot* SystemLog::claim() noexcept {
    std::size_t position = tail.load(std::memory_order_relaxed);
    while (true) {
        Slot& slot = slots[position % capacity];
        const std::size_t turn = slot.turn.load(std::memory_order_acquire);
        if (turn == position) {
            if (tail.compare_exchange_weak(position, position + 1, std::memory_order_relaxed)) return &slot;
        } else if (turn < position) {
            return nullptr;
        } else {
            position = tail.load(std::memory_order_relaxed);
        }
    }
}

void SystemLog::flush() {
    while (true) {
        Slot& slot = slots[head % capacity];
        if (slot.turn.load(std::memory_order_acquire) != head + 1) break;
        const std::string_view text(slot.text.data(), slot.length);
        sink({slot.level, slot.category, text, text.substr(0, slot.subjectLength)});
        slot.turn.store(head + capacity, std::memory_order_release);
        ++head;
    }
    if (const std::size_t count = dropped.exchange(0, std::memory_order_relaxed); count > 0)
        sink({LogLevel::error, "Log", fmt::format("{} lines from audio threads were dropped.", count)});
}

SystemLog::Sink standardErrorSink() {
    const bool toJournal = std::getenv("JOURNAL_STREAM") != nullptr;
    return [toJournal](const LogLine& line) {
        const std::string_view priority = !toJournal ? "" : line.level == LogLevel::error ? "<3>" : "<5>";
        writeToStandardError(
            fmt::format("{}{} [{}] {}\n", priority, logSubsystem, line.category, plainText(line.text))
        );
    };
}

SystemLog::Sink quietUntilAnError(SystemLog::Sink sink) {
    return
        [sink = std::move(sink), failed = std::set<std::string, std::less<>>()](const LogLine& line) mutable {
            const bool isError = line.level == LogLevel::error;
            if (isError && !line.subject.empty()) failed.emplace(line.subject);
            if (isError || failed.contains(line.subject)) sink(line);
        };
}

} // namespace orvane::platform
