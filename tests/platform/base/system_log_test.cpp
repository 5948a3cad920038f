#include "platform/base/system_log.h"
#include "support/allocation_guard.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using orvane::platform::LogLevel;
using orvane::platform::LogLine;
using orvane::platform::SystemLog;
using orvane::test::AllocationGuard;

/// A log that keeps its lines as "category: text".
struct KeptLog {
    std::vector<std::string> lines;
    SystemLog log{[this](const LogLine& line) {
        lines.push_back(std::string(line.category) + ": " + std::string(line.text));
    }};
};

TEST(SystemLog, WritesPostedLinesInOrderAtTheNextFlush) {
    KeptLog kept;
    {
        const AllocationGuard guard;
        kept.log.post(LogLevel::error, "Test", {"one ", "and ", "two"});
        kept.log.post(LogLevel::standard, "Test", {});
    }
    EXPECT_TRUE(kept.lines.empty());
    kept.log.flush();
    EXPECT_EQ(kept.lines, (std::vector<std::string>{"Test: one and two", "Test: "}));
    kept.log.flush();
    EXPECT_EQ(kept.lines.size(), 2U);
}

TEST(SystemLog, CutsLongLinesAndCountsWhatDidNotFit) {
    KeptLog kept;
    const std::string longText(SystemLog::longestLine, 'x');
    for (int i = 0; i < 200; ++i)
        kept.log.post(LogLevel::error, "Test", {longText, "more"});
    kept.log.flush();
    EXPECT_EQ(kept.lines.size(), 129U);
    EXPECT_EQ(kept.lines[0], "Test: " + longText);
    EXPECT_EQ(kept.lines.back(), "Log: 72 lines from audio threads were dropped.");
    kept.log.post(LogLevel::standard, "Test", {"room again"});
    kept.log.flush();
    EXPECT_EQ(kept.lines.back(), "Test: room again");
}

TEST(SystemLog, LosesNoLineBetweenThreadsWhileThereIsRoom) {
    constexpr int linesPerThread = 2000;
    KeptLog kept;
    const auto chatter = [&kept](const char* name) {
        for (int i = 0; i < linesPerThread; ++i)
            kept.log.post(LogLevel::standard, name, {std::to_string(i)});
    };
    std::vector<std::thread> threads;
    for (const char* name : {"A", "B", "C"})
        threads.emplace_back(chatter, name);
    std::size_t found = 0;
    for (std::size_t next = 0; found < 3 * linesPerThread; kept.log.flush())
        for (; next < kept.lines.size(); ++next) {
            const std::string& line = kept.lines[next];
            found += line.starts_with("Log: ") ? std::stoul(line.substr(5)) : 1;
        }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(found, 3U * linesPerThread);
}

TEST(SystemLog, CanStaySilentAboutEachSubjectUntilItFails) {
    std::string written;
    SystemLog log(orvane::platform::quietUntilAnError([&written](const LogLine& line) {
        written += line.text;
    }));
    for (const LogLevel level : {LogLevel::standard, LogLevel::error, LogLevel::standard}) {
        const bool isError = level == LogLevel::error;
        log.post(level, "Test", {"A ", isError ? "failed. " : "works. "});
        log.post(LogLevel::standard, "Test", {"B ", "works. "});
        log.post(level, "Test", {isError ? "An error. " : "A note. "});
    }
    log.flush();
    EXPECT_EQ(written, "A failed. An error. A works. ");
}

} // namespace
