#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/pipewire/pipewire_graph.h"

#include <memory>

namespace orvane::platform::pipewire {

/// Audio devices of the PipeWire server that the environment selects: each card, with its sink and source as
/// one device, and each sink or source without a card. Needs no session manager to link to them. Never starts
/// a server; without one there are no devices.
class PipeWireAudioDriver final : public AudioDriver {
  public:
    /// `graph` must outlive the driver.
    explicit PipeWireAudioDriver(PipeWireGraph& graph);
    ~PipeWireAudioDriver() override;

    [[nodiscard]] std::string_view name() const override { return "pipewire"; }
    std::vector<AudioDriverDevice> devices() override;

    /// The requested size, unless another program has fixed one for the whole server; of a stream that runs,
    /// its own.
    Result<std::uint32_t, OSStatus> bufferSize(std::string_view uid) override;
    /// Servers run at powers of two only, so that the size is rounded down to one. It holds while a stream of
    /// ours runs, for all nodes that run with it, and is not left behind.
    OSStatus requestBufferSize(std::string_view uid, std::uint32_t frameCount) override;
    Result<std::unique_ptr<AudioStream>, OSStatus>
    open(std::string_view uid, bool enableInput, AudioStreamClient& client) override;

    /// The death of a device is reported if it is not listed, or if its stream has lost ports. Watches resume
    /// when `devices` lists their device again.
    std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, Listener listener) override;

  private:
    struct State;

    std::unique_ptr<State> state;
};

} // namespace orvane::platform::pipewire
