#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "support/allocation_guard.h"
#include "support/driver_list.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {

/// A driver whose devices and cycles the test determines.
class FakeAudioDriver final : public platform::AudioDriver {
  public:
    explicit FakeAudioDriver(std::vector<platform::AudioDriverDevice> devices)
        : present(std::move(devices)) {}

    [[nodiscard]] std::string_view name() const override { return "fake"; }
    std::vector<platform::AudioDriverDevice> devices() override { return present; }

    platform::Result<std::uint32_t, platform::OSStatus> bufferSize(std::string_view) override {
        return frames;
    }

    platform::OSStatus requestBufferSize(std::string_view, std::uint32_t frameCount) override {
        if (!keepsBufferSize) frames = frameCount;
        return platform::noErr;
    }

    platform::Result<std::unique_ptr<platform::AudioStream>, platform::OSStatus>
    open(std::string_view uid, bool enableInput, platform::AudioStreamClient& streamClient) override {
        if (whileOpening) whileOpening();
        if (openAnswer != platform::noErr) return openAnswer;
        opened = std::string(uid) + (enableInput ? " with input" : " without input");
        client = &streamClient;
        return std::unique_ptr<platform::AudioStream>(std::make_unique<Stream>(*this));
    }

    std::unique_ptr<platform::AudioDeviceWatch> watch(std::string_view, Listener listener) override {
        return std::make_unique<Watch>(*this, std::move(listener));
    }

    /// One cycle of the open stream of the first device, under the allocation guard. Frame i of input c is
    /// c + i / 65536. Returns the outputs.
    std::vector<std::vector<float>> cycle(std::size_t frameCount) {
        std::vector<std::vector<float>> captured(present[0].inputChannelCount);
        for (std::size_t c = 0; c < captured.size(); ++c)
            for (std::size_t i = 0; i < frameCount; ++i)
                captured[c].push_back(static_cast<float>(c) + static_cast<float>(i) / 65536.0F);
        std::vector<std::vector<float>> played(
            present[0].outputChannelCount, std::vector<float>(frameCount, 99.0F)
        );
        const std::vector<std::span<const float>> inputs(captured.begin(), captured.end());
        const std::vector<std::span<float>> outputs(played.begin(), played.end());
        const AllocationGuard guard;
        client->cycle(inputs, outputs, frameCount);
        return played;
    }

    void tell(platform::AudioDeviceChange change) {
        for (const auto& [watch, listener] : std::vector(listeners))
            listener(change);
    }

    std::vector<platform::AudioDriverDevice> present;
    /// The buffer size, or the status that reading it fails with.
    platform::Result<std::uint32_t, platform::OSStatus> frames = std::uint32_t{512};
    bool keepsBufferSize = false;
    std::function<void()> whileOpening;
    platform::OSStatus openAnswer = platform::noErr;
    std::string opened;
    bool isRunning = false;
    platform::AudioStreamClient* client = nullptr;

  private:
    struct Stream final : platform::AudioStream {
        explicit Stream(FakeAudioDriver& from) : driver(from) {}
        ~Stream() override {
            driver.client = nullptr;
            driver.isRunning = false;
        }
        platform::OSStatus start() override {
            driver.isRunning = true;
            return platform::noErr;
        }
        bool stop() override {
            driver.isRunning = false;
            return true;
        }
        [[nodiscard]] std::size_t maximumFrames() const override { return 8192; }
        [[nodiscard]] std::uint32_t xrunCount() const noexcept override { return 3; }
        [[nodiscard]] int realtimePriority() const noexcept override { return 70; }

        FakeAudioDriver& driver;
    };

    struct Watch final : platform::AudioDeviceWatch {
        Watch(FakeAudioDriver& from, Listener listener) : driver(from) {
            driver.listeners.emplace_back(this, std::move(listener));
        }
        ~Watch() override {
            std::erase_if(driver.listeners, [this](const auto& entry) { return entry.first == this; });
        }

        FakeAudioDriver& driver;
    };

    std::vector<std::pair<const Watch*, Listener>> listeners;
};

/// Audio hardware over one fake driver.
struct FakeAudioMachine {
    explicit FakeAudioMachine(std::vector<platform::AudioDriverDevice> devices)
        : FakeAudioMachine(std::make_unique<FakeAudioDriver>(std::move(devices))) {}

    FakeAudioDriver& driver;
    platform::SystemAudioHardware hardware;

  private:
    explicit FakeAudioMachine(std::unique_ptr<FakeAudioDriver> made)
        : driver(*made), hardware(listOf<platform::AudioDriver>(std::move(made))) {}
};

} // namespace orvane::test
