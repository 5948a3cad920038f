#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/jack_audio/jack_audio_driver.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual_audio/virtual_audio_driver.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_unit.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using engine::MixerEngine;
using test::JackPeer;
using test::JackTestServer;

constexpr std::uint32_t period = 256;
constexpr std::size_t channelCount = 8;
constexpr double sampleRate = 48000.0;

using Channels = std::vector<std::vector<float>>;

std::vector<std::unique_ptr<platform::AudioDriver>> only(std::unique_ptr<platform::AudioDriver> driver) {
    std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
    drivers.push_back(std::move(driver));
    return drivers;
}

/// Plays silence for a while and then what the peer plays.
struct DelayedSignal final : platform::VirtualInput {
    explicit DelayedSignal(std::size_t silentFrames) : silence(silentFrames) {}

    void fill(std::span<const std::span<float>> blocks) noexcept override {
        for (std::size_t channel = 0; channel < blocks.size(); ++channel)
            for (std::size_t i = 0; i < blocks[channel].size(); ++i)
                blocks[channel][i] = time < silence ? 0.0F : JackPeer::signal(channel, time - silence + i);
        time += blocks[0].size();
    }

    const std::size_t silence;
    std::size_t time = 0;
};

/// Keeps what is played, from each channel's first sound on.
struct Recording final : platform::VirtualOutput {
    void take(std::span<const std::span<const float>> blocks) noexcept override {
        for (std::size_t channel = 0; channel < blocks.size(); ++channel)
            for (const float sample : blocks[channel])
                if (sample != 0.0F || !played[channel].empty()) played[channel].push_back(sample);
    }

    Channels played = Channels(channelCount);
};

/// The same mix on a device whose clock is moved by hand, after `silentBlocks` of silence.
Channels
mixOffline(const session::MixerDocumentData& document, std::size_t silentBlocks, std::size_t blocks) {
    platform::SystemLog log([](const platform::LogLine&) {});
    test::ManualMainThread mainThread;
    test::ScriptedAudioUnitHost audioUnitHost;
    platform::SystemMIDIServices midiServices{{}};
    const auto recording = std::make_shared<Recording>();
    for (std::vector<float>& channel : recording->played)
        channel.reserve((silentBlocks + blocks) * period);
    std::vector<platform::VirtualDevice> devices(1);
    devices[0].description = {"virtual:offline", "Offline", channelCount, channelCount, sampleRate};
    devices[0].input = std::make_shared<DelayedSignal>(silentBlocks * period);
    devices[0].output = recording;
    auto driver = std::make_unique<platform::VirtualAudioDriver>(
        std::move(devices), platform::VirtualPacing::stepped, log
    );
    platform::VirtualClock& clock = driver->clock();
    platform::SystemAudioHardware hardware(only(std::move(driver)));
    MixerEngine engine(channelCount, {hardware, midiServices, mainThread, audioUnitHost, log});
    engine.refreshDevices();
    engine.selectDevice(engine.state().availableDevices.get().at(0));
    engine.applyDocument(document);
    engine.start();
    EXPECT_EQ(clock.step("virtual:offline", silentBlocks + blocks), silentBlocks + blocks);
    return recording->played;
}

/// The engine on a real server's device, and another client of that server.
class JackEngineTest : public testing::Test {
  protected:
    JackEngineTest() {
        engine.refreshDevices();
        engine.selectDevice(engine.state().availableDevices.get().at(0));
        engine.setBufferSize(period);
    }

    void start() {
        engine.start();
        ASSERT_TRUE(engine.state().isRunning.get()) << message();
        ASSERT_EQ(message(), "");
    }

    [[nodiscard]] std::string message() const { return engine.state().lastError.get().value_or(""); }

    /// Whether what a client plays comes back to it through the mix.
    [[nodiscard]] bool isHeard() {
        for (const session::ChannelStrip& strip : std::vector(engine.state().channelStrips.get()))
            engine.setBypassed(strip.id, true);
        JackPeer peer("listener", channelCount);
        return peer.connectTo(test::uniqueJackName("ORVANE"))
               && peer.exchange(4 * period)[0].size() == 4 * period;
    }

    /// Lets what the server tells reach the engine, until the message is another one.
    [[nodiscard]] bool awaitMessage() {
        return test::waitFor([this, before = message()] {
            mainThread.runPosted();
            return message() != before;
        });
    }

    JackTestServer server{{.sampleRate = 48000, .period = period, .channelCount = channelCount}};
    platform::JackClients clients{test::uniqueJackName("ORVANE")};
    platform::SystemAudioHardware hardware{only(std::make_unique<platform::JackAudioDriver>(clients))};
    platform::SystemLog log{[](const platform::LogLine&) {}};
    test::ManualMainThread mainThread;
    test::ScriptedAudioUnitHost audioUnitHost;
    platform::SystemMIDIServices midiServices{{}};
    MixerEngine engine{channelCount, {hardware, midiServices, mainThread, audioUnitHost, log}};
};

// The main thread stands still all the while, for more than two seconds of audio: none of it comes late.
TEST_F(JackEngineTest, PlaysWhatTheSteppedDevicePlaysBitForBit) {
    constexpr std::size_t blocks = 400;
    const std::vector<session::ChannelStrip> strips = engine.state().channelStrips.get();
    engine.setGenderMode(strips[1].id, dsp::GenderTriggerMode::female);
    engine.setTrim(strips[2].id, 0.25);
    engine.setVocalRole(strips[3].id, dsp::VocalRole::lead);
    engine.setLeadGroupGainDB(3.0);
    engine.setBypassed(strips[4].id, true);
    engine.setStereo(strips[5].id, true);
    engine.setPan(strips[5].id, 0.5);
    engine.setMasterOutputRouting(session::master_output::Stereo{6, 7});
    start();
    JackPeer peer("peer", channelCount);
    ASSERT_TRUE(peer.connectTo(test::uniqueJackName("ORVANE")));
    const Channels heard = peer.exchange(blocks * period);
    ASSERT_EQ(heard[0].size(), blocks * period);
    const session::MixerDocumentData document = engine.makeDocumentData();
    engine.stop();

    // How long there was silence before the peer was connected and played is the server's affair.
    constexpr std::size_t longestSilence = 5000;
    std::size_t silence = 0;
    const auto startsAsHeard = [&] {
        const std::vector<float> beginning = mixOffline(document, silence, 1)[0];
        return std::equal(beginning.begin(), beginning.end(), heard[0].begin());
    };
    while (silence < longestSilence && !startsAsHeard())
        ++silence;
    const Channels expected = mixOffline(document, silence, blocks);
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        EXPECT_EQ(heard[channel], expected[channel]) << "channel " << channel << " after " << silence;
}

TEST_F(JackEngineTest, TellsOfEachForeignBufferSizeOnce) {
    start();
    std::vector<std::string> messages;
    const auto keeping =
        engine.state().lastError.subscribe([&messages](const auto& text) { messages.push_back(*text); });
    JackPeer other("other", 1);
    const std::pair<std::uint32_t, bool> tellsBySize[] = {
        {1024, true}, {period, false}, {1024, false}, {64, true}};
    for (const auto& [size, tells] : tellsBySize) {
        ASSERT_TRUE(other.setBufferSize(size));
        ASSERT_TRUE(!tells || awaitMessage()) << size;
    }
    EXPECT_THAT(
        messages,
        testing::ElementsAre(
            "The audio device's buffer size changed to 1024 frames while running (likely another app also "
            "using system) -- if you hear stutters, stop and restart the engine. Closing other apps that use "
            "the same device may help.",
            "The audio device's buffer size changed to 64 frames while running (likely another app also "
            "using "
            "system) -- if you hear stutters, stop and restart the engine. Closing other apps that use the "
            "same device may help."
        )
    );
    EXPECT_TRUE(engine.state().isRunning.get());
}

TEST_F(JackEngineTest, PlaysOnWithoutOneOfSeveralCardsAndSaysSo) {
    auto card = std::make_unique<JackPeer>("card", 2, JackPortIsPhysical);
    engine.refreshDevices();
    engine.selectDevice(engine.state().availableDevices.get().back());
    start();
    card.reset();
    ASSERT_TRUE(awaitMessage());
    EXPECT_THAT(message(), testing::StartsWith("A part of the audio device All JACK ports is gone, and its"));
    EXPECT_TRUE(engine.state().isRunning.get());
    EXPECT_TRUE(isHeard());
}

TEST_F(JackEngineTest, StopsWhenTheServerIsGoneAndStartsOnTheNext) {
    for (const int signal : {SIGKILL, SIGTERM}) {
        start();
        server.end(signal);
        ASSERT_TRUE(awaitMessage()) << signal;
        EXPECT_FALSE(engine.state().isRunning.get());
        EXPECT_THAT(message(), testing::StartsWith("The audio device system is gone, so the mixer has"));
        engine.stop();
        engine.start();
        mainThread.runPosted();
        EXPECT_THAT(message(), testing::StartsWith("Failed to start audio engine: ")) << signal;
        server.restart();
    }
    start();
}

TEST_F(JackEngineTest, StartsAtTheRateOfTheServerThatComesNext) {
    start();
    server.end(SIGKILL);
    ASSERT_TRUE(awaitMessage());
    EXPECT_FALSE(engine.state().isRunning.get());
    // The second comes while the mixer is stopped anyway.
    for (const unsigned rate : {44100U, 96000U}) {
        server.restart(rate);
        start();
        EXPECT_EQ(engine.state().selectedDevice.get()->sampleRate, rate);
        ASSERT_TRUE(isHeard());
        engine.stop();
        server.end(SIGTERM);
    }
}

TEST_F(JackEngineTest, PlaysOnThroughFiftyChangesOfTheBufferSize) {
    start();
    JackPeer other("other", 1);
    for (int change = 0; change < 50; ++change)
        ASSERT_TRUE(other.setBufferSize(32U << (change % 6))) << change;
    ASSERT_TRUE(other.setBufferSize(period));
    ASSERT_TRUE(awaitMessage());
    EXPECT_THAT(message(), testing::HasSubstr("buffer size changed to"));
    EXPECT_TRUE(engine.state().isRunning.get());
    ASSERT_TRUE(isHeard());
    engine.stop();
    start();
}

TEST_F(JackEngineTest, PlaysOnOrSaysWhyWhenAFrozenServerGoesOn) {
    start();
    ASSERT_TRUE(isHeard());
    server.send(SIGSTOP);
    // What the operator does meanwhile goes through at once; no cycle runs.
    for (int edit = 0; edit < 1000; ++edit)
        engine.setTrim(engine.state().channelStrips.get()[0].id, edit % 2);
    mainThread.advance(std::chrono::seconds(1));
    server.send(SIGCONT);
    const bool isGone = !isHeard();
    mainThread.runPosted();
    EXPECT_EQ(engine.state().isRunning.get(), !isGone);
    EXPECT_THAT(message(), isGone ? testing::HasSubstr("is gone") : testing::HasSubstr(""));
    engine.stop();
    start();
    ASSERT_TRUE(isHeard());
}

} // namespace
