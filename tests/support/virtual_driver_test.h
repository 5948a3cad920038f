#pragma once

#include "platform/virtual/virtual_audio_driver.h"
#include "platform/virtual/virtual_devices.h"
#include "support/build_files.h"
#include "support/stream_clients.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {

inline constexpr std::string_view panel = "virtual:panel";
inline constexpr std::string_view silent = "virtual:silent48";
inline constexpr std::string_view monitor = "virtual:monitor";

/// Has a log and can read it.
class LoggingTest : public testing::Test {
  protected:
    std::vector<std::string> logged() {
        log.flush();
        return lines;
    }

    std::vector<std::string> lines;
    platform::SystemLog log{[this](const platform::LogLine& line) { lines.emplace_back(line.text); }};
};

/// A stepped driver of the built-in devices.
class VirtualDriverTest : public LoggingTest {
  protected:
    std::unique_ptr<platform::AudioStream> open(std::string_view uid, platform::AudioStreamClient& client) {
        auto opened = driver.open(uid, true, client);
        EXPECT_TRUE(opened) << uid;
        return std::move(opened).value();
    }

    std::unique_ptr<platform::AudioStream>
    startOn(std::string_view uid, platform::AudioStreamClient& client) {
        auto stream = open(uid, client);
        EXPECT_EQ(stream->start(), platform::noErr) << uid;
        return stream;
    }

    platform::OSStatus openingStatus(std::string_view uid) {
        CountingClient client;
        const auto opened = driver.open(uid, true, client);
        return opened ? platform::noErr : opened.error();
    }

    platform::virtual_devices::VirtualAudioDriver driver{
        platform::virtual_devices::builtInDevices(panelRecording(), log),
        platform::virtual_devices::VirtualPacing::stepped, log};
};

} // namespace orvane::test
