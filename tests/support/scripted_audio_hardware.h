#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::test {

/// A device as a test describes it.
struct ScriptedDevice {
    platform::AudioObjectID id = 0;
    std::string uid = {};
    std::string name = {};
    /// Channels per stream.
    std::vector<std::uint32_t> inputStreams = {};
    std::vector<std::uint32_t> outputStreams = {};
    double sampleRate = 48000.0;
    std::uint32_t bufferSize = 512;
};

/// Audio hardware whose steps fail as a test demands. A step is a call, or a part of one that fails alone,
/// named after the property or the function.
class ScriptedAudioHardware final : public platform::AudioHardware {
    using OSStatus = platform::OSStatus;
    template <class T>
    using Result = platform::Result<T, OSStatus>;
    template <class T>
    using SizedResult = platform::Result<T, platform::SizedReadFailure>;

  public:
    std::vector<ScriptedDevice> devices;
    /// The steps that fail, and with which status.
    std::map<std::string_view, OSStatus> failures;
    /// One more step that fails, as `stepCount` counts them, with `failure`.
    std::optional<std::size_t> failingStep;
    static constexpr OSStatus failure = -50;
    std::size_t stepCount = 0;
    /// The step that failed last.
    std::string_view failedStep;

    /// The callback that a unit was given last.
    platform::SetInputCallback inputCallback;

    /// Objects that have been made and not been given back.
    int unitCount = 0;
    int listenerCount = 0;

    SizedResult<std::vector<platform::AudioObjectID>> AudioObjectGetPropertyData(platform::HardwareDevices
    ) override {
        std::vector<platform::AudioObjectID> ids;
        for (const ScriptedDevice& device : devices)
            ids.push_back(device.id);
        return sized("HardwareDevices size", "HardwareDevices data", ids);
    }
    Result<std::string> AudioObjectGetPropertyData(platform::DeviceUID property) override {
        return answer("DeviceUID", find(property.device).uid);
    }
    Result<std::string> AudioObjectGetPropertyData(platform::DeviceName property) override {
        return answer("DeviceName", find(property.device).name);
    }
    SizedResult<std::vector<std::uint32_t>> AudioObjectGetPropertyData(platform::StreamConfiguration property
    ) override {
        const ScriptedDevice& device = find(property.device);
        const bool isInput = property.scope == platform::AudioScope::input;
        const auto& streams = isInput ? device.inputStreams : device.outputStreams;
        return sized("StreamConfiguration size", "StreamConfiguration data", streams);
    }
    Result<double> AudioObjectGetPropertyData(platform::NominalSampleRate property) override {
        return answer("NominalSampleRate", find(property.device).sampleRate);
    }
    Result<std::uint32_t> AudioObjectGetPropertyData(platform::BufferFrameSize property) override {
        return answer("BufferFrameSize", find(property.device).bufferSize);
    }
    Result<bool> AudioObjectGetPropertyData(platform::DeviceIsAlive) override {
        return answer("DeviceIsAlive", true);
    }
    OSStatus AudioObjectSetPropertyData(platform::BufferFrameSize property, std::uint32_t frames) override {
        const OSStatus status = step("set BufferFrameSize");
        if (status == platform::noErr) find(property.device).bufferSize = frames;
        return status;
    }
    Result<std::unique_ptr<platform::AudioDeviceWatch>>
    AudioObjectAddPropertyListenerBlock(platform::AudioObjectID, platform::AudioDeviceChange, std::function<void()>)
        override {
        if (const OSStatus status = step("listener"); status != platform::noErr) return status;
        return std::unique_ptr<platform::AudioDeviceWatch>(std::make_unique<Watch>(listenerCount));
    }
    platform::AudioComponent AudioComponentFindNext(const platform::AudioComponentDescription&) override {
        return step("AudioComponentFindNext") == platform::noErr ? 77 : 0;
    }
    /// A failure of status `noErr` gives success without a unit.
    Result<std::unique_ptr<platform::AudioUnit>> AudioComponentInstanceNew(platform::AudioComponent
    ) override {
        const OSStatus status = step("AudioComponentInstanceNew");
        if (status != platform::noErr) return status;
        return std::unique_ptr<platform::AudioUnit>(
            failures.contains("AudioComponentInstanceNew") ? nullptr : std::make_unique<Unit>(*this)
        );
    }

  private:
    struct Unit final : platform::AudioUnit {
        explicit Unit(ScriptedAudioHardware& maker) : hardware(maker) { ++hardware.unitCount; }
        ~Unit() override {
            EXPECT_FALSE(isInitialized || isRunning);
            --hardware.unitCount;
        }

        OSStatus AudioUnitSetProperty(const platform::AudioUnitProperty& property) override {
            constexpr std::string_view names[] = {"EnableIO",         "CurrentDevice",
                                                  "StreamFormat",     "MaximumFramesPerSlice",
                                                  "SetInputCallback", "SetRenderCallback"};
            if (const auto* callback = std::get_if<platform::SetInputCallback>(&property))
                hardware.inputCallback = *callback;
            return hardware.step(names[property.index()]);
        }
        OSStatus AudioUnitInitialize() override { return set(isInitialized, true, "AudioUnitInitialize"); }
        OSStatus AudioUnitUninitialize() override {
            return set(isInitialized, false, "AudioUnitUninitialize");
        }
        OSStatus AudioOutputUnitStart() override { return set(isRunning, true, "AudioOutputUnitStart"); }
        OSStatus AudioOutputUnitStop() override { return set(isRunning, false, "AudioOutputUnitStop"); }
        OSStatus AudioUnitRender(std::span<const std::span<float>>, std::uint32_t) noexcept override {
            return hardware.step("AudioUnitRender");
        }
        [[nodiscard]] std::uint32_t xrunCount() const override { return 0; }
        [[nodiscard]] int realtimePriority() const override { return 0; }
        [[nodiscard]] std::string failureReason() const override { return {}; }

        [[nodiscard]] OSStatus set(bool& state, bool to, std::string_view name) const {
            state = to;
            return hardware.step(name);
        }

        ScriptedAudioHardware& hardware;
        bool isInitialized = false;
        bool isRunning = false;
    };

    struct Watch final : platform::AudioDeviceWatch {
        explicit Watch(int& present) : count(present) { ++count; }
        ~Watch() override { --count; }

        int& count;
    };

    OSStatus step(std::string_view name) {
        const auto found = failures.find(name);
        OSStatus status = found == failures.end() ? platform::noErr : found->second;
        if (failingStep == stepCount++) status = failure;
        if (status != platform::noErr) failedStep = name;
        return status;
    }

    template <class T>
    Result<T> answer(std::string_view name, const T& value) {
        const OSStatus status = step(name);
        return status == platform::noErr ? Result<T>(value) : Result<T>(status);
    }

    template <class T>
    SizedResult<T> sized(std::string_view sizeStep, std::string_view dataStep, const T& value) {
        using enum platform::SizedReadFailure::Step;
        if (const OSStatus status = step(sizeStep); status != platform::noErr)
            return platform::SizedReadFailure{size, status};
        if (const OSStatus status = step(dataStep); status != platform::noErr)
            return platform::SizedReadFailure{data, status};
        return value;
    }

    [[nodiscard]] ScriptedDevice& find(platform::AudioObjectID id) {
        return *std::ranges::find(devices, id, &ScriptedDevice::id);
    }
};

} // namespace orvane::test
