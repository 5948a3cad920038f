#pragma once

#include "audio/audio_device_info.h"
#include "engine/engine_state.h"
#include "engine/mix.h"
#include "engine/services.h"

#include <cstdint>
#include <optional>

namespace orvane::engine {

/// The devices that can be selected and those that are, and the routing of a mix as far as it follows from
/// them. Owned by the engine. Main thread.
class DeviceSelection final {
  public:
    /// All three outlive the selection.
    DeviceSelection(Mix& routedMix, EngineState& engineState, const Services& engineServices)
        : mix(routedMix), state(engineState), services(engineServices) {}
    DeviceSelection(const DeviceSelection&) = delete;
    DeviceSelection& operator=(const DeviceSelection&) = delete;

    /// Lists the devices, and takes what the chosen ones are now.
    void refresh();
    /// Takes what the chosen devices are now, without asking for others.
    void describeChosen();
    /// Also fills the routing that is still open and takes the master bus off outputs that are not there.
    void select(const audio::AudioDeviceInfo& device);
    /// Absent = the selected device.
    void selectMaster(const std::optional<audio::AudioDeviceInfo>& device);
    /// Returns true if it took the master bus off outputs that do not exist.
    bool validateMasterOutputRouting();

    /// The selected device's latency of one buffer, in ms; 0 without a device.
    [[nodiscard]] double bufferLatencyMs() const;
    /// What the rings of the selected device take, in bytes; 0 without a device.
    [[nodiscard]] std::int64_t ringBufferBytes() const;

  private:
    /// Takes the description over if the device is a chosen one.
    void updateChosen(const audio::AudioDeviceInfo& device);
    [[nodiscard]] std::int64_t masterCapacity() const;

    Mix& mix;
    EngineState& state;
    const Services& services;
};

} // namespace orvane::engine
