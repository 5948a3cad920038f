#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/jack/jack_audio_driver.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "support/driver_list.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_unit.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <csignal>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace test;
using engine::MixerEngine;

constexpr std::uint32_t period = 256;
constexpr std::size_t channelCount = 8;
constexpr double sampleRate = 48000.0;

using Channels = std::vector<std::vector<float>>;

/// Plays silence for a while and then what the peer plays.
struct DelayedSignal final : platform::virtual_devices::VirtualInput {
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
struct Recording final : platform::virtual_devices::VirtualOutput {
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
    std::vector<platform::virtual_devices::VirtualDevice> devices(1);
    devices[0].description = {"virtual:offline", "Offline", channelCount, channelCount, sampleRate};
    devices[0].input = std::make_shared<DelayedSignal>(silentBlocks * period);
    devices[0].output = recording;
    auto driver = std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
        std::move(devices), platform::virtual_devices::VirtualPacing::stepped, log
    );
    platform::virtual_devices::VirtualClock& clock = driver->clock();
    platform::SystemAudioHardware hardware(test::listOf<platform::AudioDriver>(std::move(driver)));
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
    platform::jack::JackClients clients{test::uniqueJackName("ORVANE")};
    platform::SystemAudioHardware hardware{
        test::listOf<platform::AudioDriver>(std::make_unique<platform::jack::JackAudioDriver>(clients))};
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

TEST_F(JackEngineTest, ReportsEachForeignBufferSizeOnce) {
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

TEST_F(JackEngineTest, ContinuesWithoutOneOfSeveralCardsAndReportsIt) {
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

TEST_F(JackEngineTest, StopsWhenTheServerIsGoneAndStartsOnTheNextAtItsRate) {
    start();
    for (const auto& [signal, rate] : {std::pair{SIGKILL, 44100U}, {SIGTERM, 96000U}}) {
        server.end(signal);
        ASSERT_TRUE(awaitMessage()) << signal;
        EXPECT_FALSE(engine.state().isRunning.get());
        EXPECT_THAT(message(), testing::StartsWith("The audio device system is gone, so the mixer has"));
        engine.start();
        mainThread.runPosted();
        EXPECT_THAT(message(), testing::StartsWith("Failed to start audio engine: ")) << signal;
        server.restart(rate);
        start();
        EXPECT_EQ(engine.state().selectedDevice.get()->sampleRate, rate);
        ASSERT_TRUE(isHeard());
    }
    // Also if the mixer is stopped when the next server comes.
    engine.stop();
    server.end(SIGTERM);
    server.restart(48000);
    start();
}

TEST_F(JackEngineTest, ContinuesThroughFiftyChangesOfTheBufferSize) {
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

/// Plays a tone into the mix without a pause and keeps the least power of the cycles that come out of it.
/// The server runs it before and after the mix in every cycle, so that no cycle comes back late.
class LevelWatch final {
  public:
    explicit LevelWatch(const std::string& mixer) {
        for (auto& [client, port, name, direction] : ends) {
            client = jack_client_open(test::uniqueJackName(name).c_str(), JackNoStartServer, nullptr);
            port = jack_port_register(client, "port", JACK_DEFAULT_AUDIO_TYPE, direction, 0);
        }
        jack_set_process_callback(player.client, play, this);
        jack_set_process_callback(meter.client, measure, this);
        for (const End& end : ends)
            jack_activate(end.client);
        jack_connect(player.client, jack_port_name(player.port), (mixer + ":in_1").c_str());
        jack_connect(meter.client, (mixer + ":out_1").c_str(), jack_port_name(meter.port));
    }
    ~LevelWatch() {
        for (const End& end : ends)
            jack_client_close(end.client);
    }

    /// Returns once `count` cycles of `frameCount` frames have come out of the mix.
    [[nodiscard]] bool awaitCycles(std::size_t frameCount, std::size_t count) {
        cyclesOfSize.store(0);
        sizeAwaited.store(frameCount);
        return test::waitFor([&] { return cyclesOfSize.load() >= count; });
    }

    std::atomic<float> leastRMS = 1.0F;

  private:
    struct End {
        jack_client_t* client;
        jack_port_t* port;
        const char* name;
        unsigned long direction;
    };

    // The ports' buffers are shared with a server that no sanitizer sees.
    [[gnu::no_sanitize("thread")]] static int play(jack_nframes_t frameCount, void* self) noexcept {
        auto* const samples =
            static_cast<float*>(jack_port_get_buffer(static_cast<LevelWatch*>(self)->player.port, frameCount)
            );
        for (jack_nframes_t i = 0; i < frameCount; ++i)
            samples[i] = 0.25F;
        return 0;
    }

    [[gnu::no_sanitize("thread")]] static int measure(jack_nframes_t frameCount, void* self) noexcept {
        auto& watch = *static_cast<LevelWatch*>(self);
        const auto* const samples =
            static_cast<const float*>(jack_port_get_buffer(watch.meter.port, frameCount));
        float power = 0.0F;
        for (jack_nframes_t i = 0; i < frameCount; ++i)
            power += samples[i] * samples[i];
        const float rms = std::sqrt(power / static_cast<float>(frameCount));
        watch.leastRMS.store(std::min(watch.leastRMS.load(), rms));
        if (frameCount == watch.sizeAwaited.load()) watch.cyclesOfSize.fetch_add(1);
        return 0;
    }

    End ends[2] = {
        {nullptr, nullptr, "player", JackPortIsOutput}, {nullptr, nullptr, "meter", JackPortIsInput}};
    End& player = ends[0];
    End& meter = ends[1];
    std::atomic<std::size_t> sizeAwaited = 0;
    std::atomic<std::size_t> cyclesOfSize = 0;
};

TEST_F(JackEngineTest, KeepsItsLevelWhileAnotherClientChangesTheBufferSize) {
    engine.setBypassed(engine.state().channelStrips.get()[0].id, true);
    start();
    LevelWatch watch(test::uniqueJackName("ORVANE"));
    ASSERT_TRUE(watch.awaitCycles(period, 20));
    JackPeer other("other", 1);
    watch.leastRMS.store(1.0F);
    for (const std::uint32_t size : {1024U, period, 8192U, 300U, period}) {
        ASSERT_TRUE(other.setBufferSize(size));
        ASSERT_TRUE(watch.awaitCycles(size, 20)) << size;
        EXPECT_NEAR(watch.leastRMS.load(), 0.25F, 1e-3F) << size;
    }
}

TEST_F(JackEngineTest, ContinuesOrReportsWhyNotWhenAFrozenServerContinues) {
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
