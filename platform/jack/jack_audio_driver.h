#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/jack/jack_clients.h"

#include <memory>

namespace orvane::platform::jack {

/// Audio devices of the JACK server that the environment names, PipeWire's among them. Each client with
/// hardware ports is a device, the two sides of a card as one, and "jack:all" is all of them. Never starts a
/// server; where none runs there are no devices until one comes.
class JackAudioDriver final : public AudioDriver {
  public:
    /// `clients` outlives the driver.
    explicit JackAudioDriver(JackClients& clients);
    ~JackAudioDriver() override;

    [[nodiscard]] std::string_view name() const override { return "jack"; }
    std::vector<AudioDriverDevice> devices() override;

    /// Whether a server answers, also if it has no devices.
    [[nodiscard]] bool isServerRunning();

    /// The server's, the same for all devices.
    Result<std::uint32_t, OSStatus> bufferSize(std::string_view uid) override;
    OSStatus requestBufferSize(std::string_view uid, std::uint32_t frameCount) override;
    Result<std::unique_ptr<AudioStream>, OSStatus>
    open(std::string_view uid, bool enableInput, AudioStreamClient& client) override;

    /// A device that is not there is told to have died, and so is one of whose stream all inputs or all
    /// outputs are gone. After a server has come back, watches go on when
    /// `devices` has listed their device again.
    std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, Listener listener) override;

  private:
    struct State;

    std::unique_ptr<State> state;
};

} // namespace orvane::platform::jack
