#pragma once

#include "platform/audio_hardware.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
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
    /// Says yes to every requested buffer size and stays at its own.
    bool keepsBufferSize = false;
};

/// Audio hardware that writes down every call as one line with its values decoded, such as
/// "AudioUnitSetProperty 2003 1 1 = 1", fails where it is told to, and runs the cycles that a test asks for.
/// Notifications may come from other threads, also after their listener was removed.
class ScriptedAudioHardware final : public platform::AudioHardware {
  public:
    using PropertyAddress = platform::AudioObjectPropertyAddress;

    std::vector<ScriptedDevice> devices;
    /// The status that a call fails with whose line begins like the key.
    std::map<std::string, platform::OSStatus> failures;
    /// Every call but AudioUnitRender, whose cycles may not allocate.
    std::vector<std::string> calls;
    int renderCalls = 0;
    /// A new instance comes back without a unit, though with success.
    bool givesEmptyInstance = false;
    std::uint32_t xrunCount = 0;
    std::int32_t realtimePriority = 0;

    /// Somebody else gives the device another buffer size; every listener that was ever registered hears it.
    void changeBufferSize(platform::AudioObjectID device, std::uint32_t frameCount);

    /// One cycle's input callback under the allocation guard. Sample i of channel c is c + i / 65536.
    platform::OSStatus captureCycle(std::uint32_t frameCount);

    /// One cycle's output callback under the allocation guard, into `buffers` or none.
    platform::OSStatus renderCycle(std::uint32_t frameCount, platform::AudioBufferList* buffers);

    platform::PropertySize
    AudioObjectGetPropertyDataSize(platform::AudioObjectID object, const PropertyAddress& address) override;
    platform::PropertySize AudioObjectGetPropertyData(
        platform::AudioObjectID object, const PropertyAddress& address, std::span<std::byte> data
    ) override;
    platform::OSStatus AudioObjectSetPropertyData(
        platform::AudioObjectID object, const PropertyAddress& address, std::span<const std::byte> data
    ) override;
    ListenerRegistration AudioObjectAddPropertyListenerBlock(
        platform::AudioObjectID object, const PropertyAddress& address,
        platform::AudioObjectPropertyListenerBlock block
    ) override;
    platform::OSStatus AudioObjectRemovePropertyListenerBlock(platform::AudioObjectPropertyListenerID listener
    ) override;
    platform::AudioComponent AudioComponentFindNext(const platform::AudioComponentDescription& description
    ) override;
    NewInstance AudioComponentInstanceNew(platform::AudioComponent component) override;
    platform::OSStatus AudioComponentInstanceDispose(platform::AudioUnit unit) override;
    platform::OSStatus AudioUnitSetProperty(
        platform::AudioUnit unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
        std::span<const std::byte> data
    ) override;
    platform::PropertySize AudioUnitGetProperty(
        platform::AudioUnit unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
        std::span<std::byte> data
    ) override;
    platform::OSStatus AudioUnitInitialize(platform::AudioUnit unit) override;
    platform::OSStatus AudioUnitUninitialize(platform::AudioUnit unit) override;
    platform::OSStatus AudioOutputUnitStart(platform::AudioUnit unit) override;
    platform::OSStatus AudioOutputUnitStop(platform::AudioUnit unit) override;
    platform::OSStatus AudioUnitRender(
        platform::AudioUnit unit, platform::AudioUnitRenderActionFlags& flags,
        const platform::AudioTimeStamp& time, std::uint32_t bus, std::uint32_t frameCount,
        platform::AudioBufferList& buffers
    ) noexcept override;

  private:
    /// Writes the call down and says what it answers.
    platform::OSStatus record(std::string call);
    [[nodiscard]] ScriptedDevice* find(platform::AudioObjectID id);
    [[nodiscard]] std::optional<std::vector<std::byte>>
    valueOf(platform::AudioObjectID object, const PropertyAddress& address);

    std::mutex mutex;
    std::vector<platform::AudioObjectPropertyListenerBlock> listeners;
    platform::AURenderCallbackStruct inputCallback;
    platform::AURenderCallbackStruct renderCallback;
    std::uint32_t maximumFrames = 0;
};

} // namespace orvane::test
