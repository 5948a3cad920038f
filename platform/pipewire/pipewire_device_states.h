#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/device_watches.h"
#include "platform/pipewire/pipewire_devices.h"
#include "platform/pipewire/pipewire_graph.h"
#include "platform/pipewire/pipewire_stream.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::pipewire {

/// How the devices of the driver run or would run, from what the server lists, what was requested and what
/// the streams see; reports changes to watches. Any thread.
class PipeWireDeviceStates final {
  public:
    explicit PipeWireDeviceStates(PipeWireGraph& ofServer) : graph(ofServer) {}

    /// The devices that are present now. Resumes the watches of those that have come back.
    std::vector<AudioDriverDevice> list();

    [[nodiscard]] std::optional<PipeWireDevice> find(std::string_view uid) const;

    /// The cycles that the device runs at, or would; absent if it is not present.
    [[nodiscard]] std::optional<PipeWireCycles> cycles(std::string_view uid) const;

    /// Keeps the length that was requested for the device, and requests it of its streams. Main thread.
    void request(std::string_view uid, std::uint32_t frameCount);
    [[nodiscard]] std::optional<std::uint32_t> requestedLength(std::string_view uid) const;

    /// The death of a device that is not there is reported.
    std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, AudioDriver::Listener listener);

    /// Has a stream's cycles and ports stand for its device's until it is detached.
    void attach(PipeWireStream& stream);
    void detach(PipeWireStream& stream);

  private:
    struct Watched {
        bool isAlive = true;
        PipeWireCycles reported;
    };

    void review();
    [[nodiscard]] bool isAlive(std::string_view uid, const std::vector<PipeWireDevice>& devices) const;
    [[nodiscard]] PipeWireCycles cyclesOf(std::string_view uid) const;

    PipeWireGraph& graph;
    std::map<std::string, std::uint32_t, std::less<>> requested;
    std::map<std::string, Watched, std::less<>> watched;
    std::vector<PipeWireStream*> streams;
    DeviceNotifier notifier;
    /// The last member, because it uses the others.
    PipeWireGraph::Observer observer{graph, [this] { review(); }};
};

} // namespace orvane::platform::pipewire
