#pragma once

#include "platform/base/system_log.h"
#include "platform/midi_services/midi_driver.h"
#include "platform/pipewire/pipewire_graph.h"

#include <memory>
#include <string_view>
#include <vector>

namespace orvane::platform::pipewire {

/// The MIDI sources of the PipeWire server that the environment selects: every port that sends MIDI. Never
/// starts a server; without one there are no sources. A thread of the driver delivers what the inputs receive
/// and notifies the listener.
class PipeWireMIDIDriver final : public MIDIDriver {
  public:
    /// `graph` and `log`, which reports lost messages, must outlive the driver.
    explicit PipeWireMIDIDriver(PipeWireGraph& graph, SystemLog* log = nullptr);
    ~PipeWireMIDIDriver() override;

    std::vector<MIDIDriverSource> sources() override;
    void setSourcesListener(SourcesListener listener) override;
    /// Each input is a node of its own, with a port of that name.
    std::unique_ptr<MIDIDriverInput> openInput(std::string_view name, Receiver receiver) override;
    Result<std::unique_ptr<MIDIOwnSource>, OSStatus> createSource(std::string_view name) override;

  private:
    class Input;
    struct State;

    std::unique_ptr<State> state;
};

} // namespace orvane::platform::pipewire
