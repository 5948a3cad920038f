#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/jack/jack_clients.h"

#include <memory>

namespace orvane::platform::jack {

/// Audio devices of the JACK server that the environment selects, including PipeWire's. Each client with
/// hardware ports is a device, with both sides of a card as one, and "jack:all" is all of them. Never starts
/// a server; without one there are no devices.
class JackAudioDriver final : public AudioDriver {
  public:
    /// `clients` must outlive the driver.
    explicit JackAudioDriver(JackClients& clients);
    ~JackAudioDriver() override;

    [[nodiscard]] std::string_view name() const override { return "jack"; }
    std::vector<AudioDriverDevice> devices() override;

    /// The server's buffer size, the same for all devices.
    Result<std::uint32_t, OSStatus> bufferSize(std::string_view uid) override;
    OSStatus requestBufferSize(std::string_view uid, std::uint32_t frameCount) override;
    Result<std::unique_ptr<AudioStream>, OSStatus>
    open(std::string_view uid, bool enableInput, AudioStreamClient& client) override;

    /// The death of a device is reported if it is not listed, and if its stream has lost all inputs or all
    /// outputs. After a server has come back, watches resume when `devices` lists their device again.
    std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, Listener listener) override;

  private:
    struct State;

    std::unique_ptr<State> state;
};

} // namespace orvane::platform::jack
