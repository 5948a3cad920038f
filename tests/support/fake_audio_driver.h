#pragma once

#include "platform/audio_hardware/audio_driver.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orvane::test {

/// A driver whose devices are what the test says and whose cycles the test makes.
class FakeAudioDriver final : public platform::AudioDriver {
  public:
    explicit FakeAudioDriver(std::vector<platform::AudioDriverDevice> devices)
        : present(std::move(devices)) {}

    [[nodiscard]] std::string_view name() const override { return "fake"; }
    std::vector<platform::AudioDriverDevice> devices() override {
        ++listings;
        return present;
    }

    platform::Result<std::uint32_t, platform::OSStatus> bufferSize(std::string_view) override {
        return frames;
    }

    platform::OSStatus requestBufferSize(std::string_view, std::uint32_t frameCount) override {
        frames = frameCount;
        return platform::noErr;
    }

    platform::Result<std::unique_ptr<platform::AudioStream>, platform::OSStatus>
    open(std::string_view uid, bool enableInput, platform::AudioStreamClient& streamClient) override {
        if (openAnswer != platform::noErr) return openAnswer;
        opened = std::string(uid) + (enableInput ? " with input" : " without input");
        client = &streamClient;
        return std::unique_ptr<platform::AudioStream>(std::make_unique<Stream>(*this));
    }

    std::unique_ptr<platform::AudioDeviceWatch> watch(std::string_view, Listener listener) override {
        return std::make_unique<Watch>(*this, std::move(listener));
    }

    void tell(platform::AudioDeviceChange change) {
        for (const auto& [watch, listener] : std::vector(listeners))
            listener(change);
    }

    std::vector<platform::AudioDriverDevice> present;
    int listings = 0;
    std::uint32_t frames = 512;
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

} // namespace orvane::test
