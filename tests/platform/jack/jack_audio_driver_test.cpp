#include "platform/jack/jack_audio_driver.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

namespace orvane::platform::jack {

void PrintTo(const AudioDriverDevice& device, std::ostream* out) {
    *out << device.uid << " (" << device.name << ") " << device.inputChannelCount << " in, "
         << device.outputChannelCount << " out, " << device.sampleRate << " Hz";
}

} // namespace orvane::platform::jack

namespace {

using namespace orvane::platform;
using namespace orvane::platform::jack;
using orvane::test::JackPeer;
using orvane::test::JackServerName;
using orvane::test::JackTestServer;
using orvane::test::uniqueJackName;
using orvane::test::waitFor;
using testing::ElementsAre;
using testing::IsEmpty;

struct Driver {
    JackClients clients{uniqueJackName("ORVANE")};
    JackAudioDriver jack{clients};
};

struct SilentClient final : AudioStreamClient {
    void cycle(
        std::span<const std::span<const float>>, std::span<const std::span<float>> outputs, std::size_t
    ) noexcept override {
        for (const std::span<float> output : outputs)
            std::ranges::fill(output, 0.0F);
    }
};

/// Records a watch's notifications, with the buffer size that the listener read.
class WatchLog final {
  public:
    WatchLog(AudioDriver& driver, const std::string& uid)
        : watch(driver.watch(uid, [this, &driver, uid](AudioDeviceChange change) {
              const auto bufferSize = driver.bufferSize(uid);
              const std::scoped_lock lock(mutex);
              lines.push_back(
                  change == AudioDeviceChange::died           ? "died"
                  : change == AudioDeviceChange::lostChannels ? "lost channels"
                  : bufferSize                                ? std::to_string(bufferSize.value())
                                                              : "unknown"
              );
          })) {}

    [[nodiscard]] std::vector<std::string> received() const {
        const std::scoped_lock lock(mutex);
        return lines;
    }

    [[nodiscard]] bool waitForLines(std::size_t count) const {
        return waitFor([&] { return received().size() >= count; });
    }

  private:
    mutable std::mutex mutex;
    std::vector<std::string> lines;
    std::unique_ptr<AudioDeviceWatch> watch;
};

class JackServerFormats : public testing::TestWithParam<JackTestServer::Format> {};

INSTANTIATE_TEST_SUITE_P(
    Formats, JackServerFormats,
    testing::Values(
        JackTestServer::Format{.sampleRate = 44100, .period = 1024, .channelCount = 1},
        JackTestServer::Format{.sampleRate = 48000, .period = 64, .channelCount = 12},
        JackTestServer::Format{.sampleRate = 96000, .period = 512, .channelCount = 32}
    )
);

TEST_P(JackServerFormats, ShowTheServersHardwareAsADevice) {
    const auto [sampleRate, period, channelCount, waits] = GetParam();
    const JackTestServer server(GetParam());
    Driver driver;
    EXPECT_THAT(
        driver.jack.devices(),
        ElementsAre(AudioDriverDevice{
            "jack:system", "system", channelCount, channelCount, static_cast<double>(sampleRate)})
    );
    EXPECT_EQ(driver.jack.bufferSize("jack:system").value(), period);
}

TEST(JackAudioDriver, HasNoDevicesAndLogsNothingWithoutAServer) {
    const JackServerName nobody;
    testing::internal::CaptureStderr();
    {
        Driver driver;
        SilentClient client;
        EXPECT_THAT(driver.jack.devices(), IsEmpty());
        EXPECT_EQ(driver.jack.bufferSize("jack:system").error(), kAudioHardwareBadDeviceError);
        EXPECT_EQ(driver.jack.requestBufferSize("jack:system", 256), kAudioHardwareBadDeviceError);
        EXPECT_EQ(driver.jack.open("jack:system", true, client).error(), kAudioHardwareBadDeviceError);
        const WatchLog log(driver.jack, "jack:system");
        EXPECT_TRUE(log.waitForLines(1));
        EXPECT_THAT(log.received(), ElementsAre("died"));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(JackAudioDriver, RejectsUnknownUids) {
    const JackTestServer server({});
    Driver driver;
    SilentClient client;
    for (const char* uid : {"", "system", "jack:", "jack:all", "jack:System"}) {
        EXPECT_EQ(driver.jack.bufferSize(uid).error(), kAudioHardwareBadDeviceError) << uid;
        EXPECT_EQ(driver.jack.requestBufferSize(uid, 256), kAudioHardwareBadDeviceError) << uid;
        EXPECT_EQ(driver.jack.open(uid, true, client).error(), kAudioHardwareBadDeviceError) << uid;
    }
}

TEST(JackAudioDriver, ListsEachClientWithHardwarePortsAndAllOfThemTogether) {
    const JackTestServer server({});
    Driver driver;
    auto card = std::make_unique<JackPeer>("card", 3, JackPortIsPhysical);
    EXPECT_THAT(
        driver.jack.devices(), ElementsAre(
                                   AudioDriverDevice{"jack:" + card->name(), card->name(), 3, 3, 48000.0},
                                   AudioDriverDevice{"jack:system", "system", 2, 2, 48000.0},
                                   AudioDriverDevice{"jack:all", "All JACK ports", 5, 5, 48000.0}
                               )
    );
    const WatchLog goes(driver.jack, "jack:" + card->name());
    const WatchLog stays(driver.jack, "jack:system");
    card.reset();
    EXPECT_TRUE(goes.waitForLines(1));
    EXPECT_THAT(goes.received(), ElementsAre("died"));
    EXPECT_THAT(stays.received(), IsEmpty());
    EXPECT_EQ(driver.jack.devices().size(), 1U);
}

/// One side of a card.
struct CardSide {
    CardSide(const std::string& name, unsigned long direction)
        : client(jack_client_open(name.c_str(), JackNoStartServer, nullptr)),
          port(
              jack_port_register(client, "port_1", JACK_DEFAULT_AUDIO_TYPE, direction | JackPortIsPhysical, 0)
          ) {
        jack_activate(client);
    }
    ~CardSide() { jack_client_close(client); }

    jack_client_t* client;
    jack_port_t* port;
};

TEST(JackAudioDriver, NotifiesAStreamWhosePortsHaveGone) {
    const JackTestServer server({});
    const std::string name = uniqueJackName("card");
    for (const bool isUnplugged : {true, false}) {
        SCOPED_TRACE(isUnplugged);
        Driver driver;
        JackAudioDriver other(driver.clients);
        SilentClient client;
        auto captures = std::make_unique<CardSide>(name + " In", JackPortIsOutput);
        auto plays = std::make_unique<CardSide>(name + " Out", JackPortIsInput);
        const WatchLog ofCard(driver.jack, "jack:" + name);
        const WatchLog ofAll(driver.jack, "jack:all");
        const WatchLog ofOutputs(other, "jack:" + name);
        const auto card = driver.jack.open("jack:" + name, true, client);
        const auto all = driver.jack.open("jack:all", true, client);
        const auto outputs = other.open("jack:" + name, false, client);
        ASSERT_TRUE(card && all && outputs);

        CardSide(uniqueJackName("later"), JackPortIsOutput);
        if (isUnplugged)
            captures.reset();
        else
            jack_port_unregister(captures->client, captures->port);
        EXPECT_TRUE(ofCard.waitForLines(1));
        EXPECT_TRUE(ofAll.waitForLines(1));
        plays.reset();
        EXPECT_TRUE(ofOutputs.waitForLines(1));
        EXPECT_THAT(ofCard.received(), ElementsAre("died"));
        EXPECT_THAT(ofAll.received(), ElementsAre("lost channels")) << "the other card plays on";
        EXPECT_THAT(ofOutputs.received(), ElementsAre("died"));
    }
}

TEST(JackAudioDriver, NotifiesEveryChangeOfTheBufferSizeOnce) {
    const JackTestServer server({});
    Driver driver;
    JackPeer other("other", 1);
    const WatchLog log(driver.jack, "jack:system");
    EXPECT_TRUE(other.setBufferSize(512));
    EXPECT_TRUE(log.waitForLines(1));
    EXPECT_TRUE(other.setBufferSize(512));
    EXPECT_EQ(driver.jack.requestBufferSize("jack:system", 128), noErr);
    EXPECT_TRUE(log.waitForLines(2));
    EXPECT_EQ(driver.jack.bufferSize("jack:system").value(), 128U);
    EXPECT_TRUE(other.setBufferSize(8192));
    EXPECT_TRUE(log.waitForLines(3));
    EXPECT_THAT(log.received(), ElementsAre("512", "128", "8192"));
}

TEST(JackAudioDriver, ReportsABufferSizeThatTheServerRefuses) {
    const JackTestServer server({});
    Driver driver;
    for (const std::uint32_t frameCount : {0U, 8193U, 1U << 31U}) {
        EXPECT_EQ(
            driver.jack.requestBufferSize("jack:system", frameCount), kAudioHardwareIllegalOperationError
        ) << frameCount;
        EXPECT_EQ(driver.jack.bufferSize("jack:system").value(), 256U) << frameCount;
    }
}

TEST(JackAudioDriver, SurvivesItsServerAndFindsTheNextOne) {
    for (const int signal : {SIGTERM, SIGKILL}) {
        JackTestServer server({});
        Driver driver;
        SilentClient client;
        const WatchLog log(driver.jack, "jack:system");
        auto stopped = driver.jack.open("jack:system", true, client);
        auto kept = driver.jack.open("jack:system", true, client);
        ASSERT_TRUE(stopped && kept);
        ASSERT_EQ(stopped.value()->start(), noErr);
        ASSERT_EQ(kept.value()->start(), noErr);

        server.end(signal);
        EXPECT_TRUE(log.waitForLines(1)) << "signal " << signal;
        stopped.value()->stop();
        EXPECT_EQ(stopped.value()->start(), kAudioHardwareBadDeviceError);
        stopped.value().reset();
        EXPECT_THAT(driver.jack.devices(), IsEmpty());

        server.restart();
        // The server answers before it accepts clients.
        EXPECT_TRUE(waitFor([&] { return driver.jack.devices().size() == 1; })) << "signal " << signal;
        EXPECT_EQ(kept.value()->start(), kAudioHardwareBadDeviceError);
        EXPECT_EQ(driver.jack.requestBufferSize("jack:system", 512), noErr);
        EXPECT_TRUE(log.waitForLines(2)) << "signal " << signal;
        auto next = driver.jack.open("jack:system", true, client);
        ASSERT_TRUE(next);
        EXPECT_EQ(next.value()->start(), noErr);

        server.end(signal);
        EXPECT_TRUE(log.waitForLines(3)) << "signal " << signal;
        EXPECT_THAT(log.received(), ElementsAre("died", "512", "died")) << "signal " << signal;
    }
}

} // namespace
