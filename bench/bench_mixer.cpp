#include "bench_mixer.h"

#include "platform/virtual/virtual_audio_driver.h"

#include <fmt/format.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

namespace orvane::bench {

namespace {

constexpr std::size_t deviceChannels = 48;

std::vector<std::unique_ptr<platform::AudioDriver>> only(std::unique_ptr<platform::AudioDriver> driver) {
    std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
    drivers.push_back(std::move(driver));
    return drivers;
}

/// A stretch of noise, played by every input from a different position.
class Noise final : public platform::virtual_devices::VirtualInput {
  public:
    Noise() : samples(length) {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> noise(-0.3F, 0.3F);
        std::ranges::generate(samples, [&] { return noise(random); });
    }

    void fill(std::span<const std::span<float>> blocks) noexcept override {
        const std::size_t frameCount = blocks.front().size();
        for (std::size_t channel = 0; channel < blocks.size(); ++channel) {
            const std::size_t start =
                (position + channel * 64) % (length - platform::virtual_devices::longestVirtualBuffer);
            std::copy_n(samples.data() + start, frameCount, blocks[channel].begin());
        }
        position += frameCount;
    }

  private:
    static constexpr std::size_t length = 48000;

    std::vector<float> samples;
    std::size_t position = 0;
};

} // namespace

BenchMixer::BenchMixer(std::size_t strips, const MakeDriver& makeDriver, std::size_t insertWorkers)
    : hardware(only(makeDriver(log))), engine(strips, services(insertWorkers)) {
    engine.refreshDevices();
    if (engine.state().availableDevices.get().empty())
        throw std::runtime_error(engine.state().lastError.get().value_or("There is no audio device."));
    engine.selectDevice(engine.state().availableDevices.get().front());
}

engine::Services BenchMixer::services(std::size_t insertWorkers) {
    engine::Services all{hardware, noMIDI, loop, units, log};
    all.insertWorkers = insertWorkers;
    return all;
}

void BenchMixer::loadOnEveryStrip(std::string_view pluginName) {
    const auto installed = engine.availableInsertComponents();
    const auto plugin = std::ranges::find(installed, pluginName, &platform::AVAudioUnitComponent::name);
    if (plugin == installed.end())
        throw std::runtime_error(fmt::format("The plugin {} is not installed.", pluginName));
    for (const session::ChannelStrip& strip : std::vector(engine.state().channelStrips.get()))
        engine.loadPlugin(*plugin, 0, strip.id);
    awaitPlugins();
}

void BenchMixer::awaitPlugins() {
    loop.runWhile([this] {
        return std::ranges::any_of(engine.state().pluginLoadStates.get(), [](const auto& slot) {
            return std::holds_alternative<plugins::load_state::Loading>(slot.second);
        });
    });
}

void BenchMixer::start() {
    engine.start();
    if (!engine.state().isRunning.get())
        throw std::runtime_error(engine.state().lastError.get().value_or("The mixer did not start."));
}

std::unique_ptr<platform::AudioDriver> noisyDevice(platform::SystemLog& log) {
    std::vector<platform::virtual_devices::VirtualDevice> devices(1);
    devices[0].description = {"virtual:bench", "Bench", deviceChannels, deviceChannels, 48000.0};
    devices[0].input = std::make_shared<Noise>();
    return std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
        std::move(devices), platform::virtual_devices::VirtualPacing::live, log
    );
}

} // namespace orvane::bench
