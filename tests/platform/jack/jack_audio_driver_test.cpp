#include "platform/jack/jack_audio_driver.h"
#include "support/change_log.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/stream_clients.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <memory>
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
using namespace orvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

struct Driver {
    JackClients clients{uniqueJackName("ORVANE")};
    JackAudioDriver jack{clients};
};

constexpr const char* uid = "jack:system";

TEST(JackAudioDriver, HasNoDevicesAndLogsNothingWithoutAServer) {
    const orvane::test::JackServerName nobody;
    testing::internal::CaptureStderr();
    {
        Driver driver;
        CountingClient client;
        EXPECT_THAT(driver.jack.devices(), IsEmpty());
        EXPECT_EQ(driver.jack.bufferSize(uid).error(), kAudioHardwareBadDeviceError);
        EXPECT_EQ(driver.jack.requestBufferSize(uid, 256), kAudioHardwareBadDeviceError);
        EXPECT_EQ(driver.jack.open(uid, true, client).error(), kAudioHardwareBadDeviceError);
        ChangeLog changes;
        const auto watch = driver.jack.watch(uid, changes.listener());
        EXPECT_THAT(changes.waitFor(1), ElementsAre(AudioDeviceChange::died));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(JackAudioDriver, RejectsUnknownUids) {
    const JackTestServer server({});
    Driver driver;
    CountingClient client;
    for (const char* unknown : {"", "system", "jack:", "jack:all", "jack:System"}) {
        EXPECT_EQ(driver.jack.bufferSize(unknown).error(), kAudioHardwareBadDeviceError) << unknown;
        EXPECT_EQ(driver.jack.requestBufferSize(unknown, 256), kAudioHardwareBadDeviceError) << unknown;
        EXPECT_EQ(driver.jack.open(unknown, true, client).error(), kAudioHardwareBadDeviceError) << unknown;
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
    ChangeLog ofCard;
    ChangeLog ofSystem;
    const auto cardWatch = driver.jack.watch("jack:" + card->name(), ofCard.listener());
    const auto systemWatch = driver.jack.watch(uid, ofSystem.listener());
    card.reset();
    EXPECT_THAT(ofCard.waitFor(1), ElementsAre(AudioDeviceChange::died));
    EXPECT_THAT(ofSystem.get(), IsEmpty());
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
        CountingClient client;
        auto captures = std::make_unique<CardSide>(name + " In", JackPortIsOutput);
        auto plays = std::make_unique<CardSide>(name + " Out", JackPortIsInput);
        ChangeLog ofCard;
        ChangeLog ofAll;
        ChangeLog ofOutputs;
        const std::unique_ptr<AudioDeviceWatch> watches[] = {
            driver.jack.watch("jack:" + name, ofCard.listener()),
            driver.jack.watch("jack:all", ofAll.listener()),
            other.watch("jack:" + name, ofOutputs.listener())};
        const auto card = driver.jack.open("jack:" + name, true, client);
        const auto all = driver.jack.open("jack:all", true, client);
        const auto outputs = other.open("jack:" + name, false, client);
        ASSERT_TRUE(card && all && outputs);

        CardSide(uniqueJackName("later"), JackPortIsOutput);
        if (isUnplugged)
            captures.reset();
        else
            jack_port_unregister(captures->client, captures->port);
        using enum AudioDeviceChange;
        EXPECT_THAT(ofCard.waitFor(1), ElementsAre(died));
        EXPECT_THAT(ofAll.waitFor(1), ElementsAre(lostChannels)) << "the other card plays on";
        EXPECT_THAT(ofOutputs.get(), IsEmpty());
        plays.reset();
        EXPECT_THAT(ofOutputs.waitFor(1), ElementsAre(died));
    }
}

TEST(JackAudioDriver, NotifiesEveryChangeOfTheBufferSizeOnce) {
    const JackTestServer server({});
    Driver driver;
    JackPeer other("other", 1);
    ChangeLog changes;
    std::atomic<std::uint32_t> sizeSeen = 0;
    const auto watch = driver.jack.watch(uid, [&, note = changes.listener()](AudioDeviceChange change) {
        sizeSeen = driver.jack.bufferSize(uid).value();
        note(change);
    });
    const auto sizeAfter = [&](std::size_t count) {
        EXPECT_EQ(changes.waitFor(count), std::vector(count, AudioDeviceChange::bufferSize));
        return sizeSeen.load();
    };
    EXPECT_TRUE(other.setBufferSize(512));
    EXPECT_EQ(sizeAfter(1), 512U);
    EXPECT_TRUE(other.setBufferSize(512));
    EXPECT_EQ(driver.jack.requestBufferSize(uid, 128), noErr);
    EXPECT_EQ(sizeAfter(2), 128U);
    EXPECT_TRUE(other.setBufferSize(8192));
    EXPECT_EQ(sizeAfter(3), 8192U);
}

TEST(JackAudioDriver, ReportsABufferSizeThatTheServerRefuses) {
    const JackTestServer server({});
    Driver driver;
    for (const std::uint32_t frameCount : {0U, 8193U, 1U << 31U}) {
        EXPECT_EQ(driver.jack.requestBufferSize(uid, frameCount), kAudioHardwareIllegalOperationError)
            << frameCount;
        EXPECT_EQ(driver.jack.bufferSize(uid).value(), 256U) << frameCount;
    }
}

TEST(JackAudioDriver, SurvivesItsServerAndFindsTheNextOne) {
    for (const int signal : {SIGTERM, SIGKILL}) {
        JackTestServer server({});
        Driver driver;
        CountingClient client;
        ChangeLog changes;
        const auto watch = driver.jack.watch(uid, changes.listener());
        auto stopped = driver.jack.open(uid, true, client);
        auto kept = driver.jack.open(uid, true, client);
        ASSERT_TRUE(stopped && kept);
        ASSERT_EQ(stopped.value()->start(), noErr);
        ASSERT_EQ(kept.value()->start(), noErr);

        server.end(signal);
        EXPECT_EQ(changes.waitFor(1).size(), 1U) << "signal " << signal;
        stopped.value()->stop();
        EXPECT_EQ(stopped.value()->start(), kAudioHardwareBadDeviceError);
        stopped.value().reset();
        EXPECT_THAT(driver.jack.devices(), IsEmpty());

        server.restart();
        // The server answers before it accepts clients.
        EXPECT_TRUE(waitFor([&] { return driver.jack.devices().size() == 1; })) << "signal " << signal;
        EXPECT_EQ(kept.value()->start(), kAudioHardwareBadDeviceError);
        EXPECT_EQ(driver.jack.requestBufferSize(uid, 512), noErr);
        EXPECT_EQ(changes.waitFor(2).size(), 2U) << "signal " << signal;
        auto next = driver.jack.open(uid, true, client);
        ASSERT_TRUE(next);
        EXPECT_EQ(next.value()->start(), noErr);

        server.end(signal);
        using enum AudioDeviceChange;
        EXPECT_THAT(changes.waitFor(3), ElementsAre(died, bufferSize, died)) << "signal " << signal;
    }
}

} // namespace
