#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/device_watches.h"
#include "platform/base/system_log.h"
#include "platform/virtual/virtual_clock.h"
#include "platform/virtual/virtual_device.h"
#include "platform/virtual/virtual_device_control.h"
#include "platform/virtual/virtual_device_state.h"
#include "platform/virtual/virtual_endpoints.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace orvane::platform::virtual_devices {

/// Audio devices without hardware: for computers without any, for rendering files and for tests. A device has
/// one stream at a time.
class VirtualAudioDriver final : public AudioDriver {
  public:
    /// `describedDevices` must have unique uids. `systemLog` must outlive the driver.
    VirtualAudioDriver(
        std::vector<VirtualDevice> describedDevices, VirtualPacing streamPacing, SystemLog& systemLog
    );

    [[nodiscard]] std::string_view name() const override { return "virtual"; }
    std::vector<AudioDriverDevice> devices() override;
    Result<std::uint32_t, OSStatus> bufferSize(std::string_view uid) override;
    OSStatus requestBufferSize(std::string_view uid, std::uint32_t frameCount) override;
    Result<std::unique_ptr<AudioStream>, OSStatus>
    open(std::string_view uid, bool enableInput, AudioStreamClient& client) override;
    std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, Listener listener) override;

    /// The clock that runs the cycles of a stepped driver.
    [[nodiscard]] VirtualClock& clock() noexcept { return stepper; }

    /// Controls a device's faults; absent if no device has this uid. Main thread.
    std::optional<VirtualDeviceControl> control(std::string_view uid);

  private:
    [[nodiscard]] VirtualDeviceState* find(std::string_view uid) const;
    [[nodiscard]] VirtualDeviceState* findAlive(std::string_view uid) const;

    VirtualPacing pacing;
    SystemLog& log;
    std::vector<std::unique_ptr<VirtualDeviceState>> states;
    DeviceNotifier notifier;
    VirtualClock stepper;
};

} // namespace orvane::platform::virtual_devices
