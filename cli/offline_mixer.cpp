#include "cli/offline_mixer.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::cli {

namespace {

constexpr std::string_view deviceUID = "virtual:offline";

std::vector<std::unique_ptr<platform::AudioDriver>> only(std::unique_ptr<platform::AudioDriver> driver) {
    std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
    drivers.push_back(std::move(driver));
    return drivers;
}

} // namespace

/// Captures the blocks that were passed to the cycle.
struct OfflineMixer::Input final : platform::virtual_devices::VirtualInput {
    void fill(std::span<const std::span<float>> blocks) noexcept override {
        for (std::size_t channel = 0; channel < blocks.size(); ++channel)
            std::ranges::copy(captured[channel], blocks[channel].begin());
    }

    std::span<const std::span<const float>> captured;
};

/// Plays into the blocks that were passed to the cycle.
struct OfflineMixer::Output final : platform::virtual_devices::VirtualOutput {
    void take(std::span<const std::span<const float>> blocks) noexcept override {
        for (std::size_t channel = 0; channel < blocks.size(); ++channel)
            std::ranges::copy(blocks[channel], played[channel].begin());
    }

    std::span<const std::span<float>> played;
};

OfflineMixer::OfflineMixer(std::size_t stripCount, const Device& device)
    : log(platform::quietUntilAnError(platform::standardErrorSink())),
      input(std::make_shared<Input>()),
      output(std::make_shared<Output>()),
      hardware([&] {
          std::vector<platform::virtual_devices::VirtualDevice> devices;
          devices.push_back(
              {.description =
                   {.uid = std::string(deviceUID),
                    .name = "Offline",
                    .inputChannelCount = device.inputCount,
                    .outputChannelCount = device.outputCount,
                    .sampleRate = device.sampleRate},
               .input = input,
               .output = output}
          );
          auto stepped = std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
              std::move(devices), platform::virtual_devices::VirtualPacing::stepped, log
          );
          driver = stepped.get();
          return only(std::move(stepped));
      }()),
      mixer(stripCount, {hardware, noMIDI, mainThread, audioUnitHost, log}) {
    mixer.refreshDevices();
    mixer.selectDevice(mixer.state().availableDevices.get().at(0));
}

platform::Result<platform::Done> OfflineMixer::start() {
    mixer.start();
    if (mixer.state().isRunning.get()) return platform::Done{};
    return platform::Error{mixer.state().lastError.get().value_or("The mixer did not start.")};
}

void OfflineMixer::cycle(
    std::span<const std::span<const float>> captured, std::span<const std::span<float>> played
) {
    input->captured = captured;
    output->played = played;
    driver->clock().step(deviceUID, 1);
    log.flush();
}

} // namespace orvane::cli
