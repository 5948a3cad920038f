// Measures the time from a note that recalls a scene to the first sample of the scene: 48 strips on a live
// virtual device, the note sent by a MIDI source of this program.

#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/base/run_loop.h"
#include "platform/base/system_log.h"
#include "platform/lv2/lv2_unit_host.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "platform/virtual/virtual_midi_driver.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace std::chrono_literals;

constexpr std::size_t stripCount = 48;
constexpr int recalls = 400;
constexpr std::uint8_t firstNote = 60;

/// Every input plays the same constant.
struct ConstantInput final : platform::virtual_devices::VirtualInput {
    void fill(std::span<const std::span<float>> blocks) noexcept override {
        for (const std::span<float>& block : blocks)
            std::ranges::fill(block, 0.5F);
    }
};

/// Counts blocks and keeps the level of the last one.
struct Listener final : platform::virtual_devices::VirtualOutput {
    void take(std::span<const std::span<const float>> blocks) noexcept override {
        level.store(blocks[0][0]);
        count.fetch_add(1);
    }

    std::atomic<float> level = 0.0F;
    std::atomic<std::int64_t> count = 0;
};

template <class Driver>
std::vector<std::unique_ptr<Driver>> only(std::unique_ptr<Driver> driver) {
    std::vector<std::unique_ptr<Driver>> drivers;
    drivers.push_back(std::move(driver));
    return drivers;
}

/// The number of blocks from each note to the first that plays its scene: 1 is the next block.
std::vector<std::int64_t> measure(std::int64_t bufferSize) {
    platform::SystemLog log([](const platform::LogLine&) {});
    const auto listener = std::make_shared<Listener>();
    std::vector<platform::virtual_devices::VirtualDevice> devices(1);
    devices[0].description = {"virtual:bench", "Bench", stripCount, stripCount, 48000.0};
    devices[0].input = std::make_shared<ConstantInput>();
    devices[0].output = listener;
    platform::SystemAudioHardware hardware(
        only<platform::AudioDriver>(std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
            std::move(devices), platform::virtual_devices::VirtualPacing::live, log
        ))
    );
    auto virtualMIDI = std::make_unique<platform::virtual_devices::VirtualMIDIDriver>();
    const auto keys = virtualMIDI->createSource("Keys").value();
    platform::SystemMIDIServices midiServices(only<platform::MIDIDriver>(std::move(virtualMIDI)));
    platform::RunLoop loop;
    platform::lv2::Lv2UnitHost units(log);
    engine::MixerEngine engine(stripCount, {hardware, midiServices, loop, units, log});
    engine.refreshDevices();
    engine.selectDevice(engine.state().availableDevices.get().at(0));
    engine.setBufferSize(bufferSize);
    const std::vector<session::ChannelStrip> strips = engine.state().channelStrips.get();
    for (std::uint8_t scene = 0; scene < 2; ++scene) {
        for (const session::ChannelStrip& strip : strips) {
            engine.setBypassed(strip.id, true);
            engine.setTrim(strip.id, scene == 0 ? 0.5 : 1.0);
        }
        engine.newSnapshot();
        engine.beginMIDILearn();
        engine.handleMIDINote({0, firstNote + scene});
    }
    engine.start();

    std::vector<std::int64_t> blocks;
    std::int64_t sentAt = 0;
    float awaited = 0.5F;
    const auto send = [&] {
        awaited = awaited == 0.25F ? 0.5F : 0.25F;
        sentAt = listener->count.load();
        keys->send(std::array<std::uint8_t, 3>{
            0x90, static_cast<std::uint8_t>(firstNote + (awaited == 0.5F ? 1 : 0)), 100});
    };
    send();
    // Polls more often than blocks arrive; a late poll counts as additional blocks.
    const auto timer = loop.repeat(50us, [&] {
        const std::int64_t now = listener->count.load();
        if (listener->level.load() != awaited) return;
        blocks.push_back(std::max<std::int64_t>(now - sentAt, 1));
        if (blocks.size() == recalls)
            loop.quit();
        else
            send();
    });
    loop.run();
    engine.stop();
    return blocks;
}

} // namespace

int main() {
    fmt::print(
        "From a note-on to the first block that plays its scene, {} strips, in blocks (1 = the next):\n",
        stripCount
    );
    fmt::print("{:>8} {:>8} {:>8} {:>8}\n", "frames", "median", "99 %", "worst");
    for (const std::int64_t bufferSize : {64, 256, 1024}) {
        std::vector<std::int64_t> blocks = measure(bufferSize);
        std::ranges::sort(blocks);
        fmt::print(
            "{:>8} {:>8} {:>8} {:>8}\n", bufferSize, blocks[blocks.size() / 2],
            blocks[blocks.size() * 99 / 100], blocks.back()
        );
    }
}
