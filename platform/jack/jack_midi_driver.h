#pragma once

#include "platform/base/system_log.h"
#include "platform/jack/jack_clients.h"
#include "platform/midi_services/midi_driver.h"

#include <memory>
#include <string_view>
#include <vector>

namespace orvane::platform::jack {

/// The MIDI sources of the JACK server that the environment selects, including PipeWire's: every MIDI output
/// port. Never starts a server; without one there are no sources. If a listener is set, a thread of the
/// driver tries to open a client every two seconds, which fails at once without a server, and notifies the
/// listener when there are sources again. The thread also delivers what the inputs receive.
class JackMIDIDriver final : public MIDIDriver {
  public:
    /// `clients` and `log`, which reports lost messages, must outlive the driver.
    explicit JackMIDIDriver(JackClients& clients, SystemLog* log = nullptr);
    ~JackMIDIDriver() override;

    std::vector<MIDIDriverSource> sources() override;
    void setSourcesListener(SourcesListener listener) override;
    /// Each input is a client of its own, with a port of that name.
    std::unique_ptr<MIDIDriverInput> openInput(std::string_view name, Receiver receiver) override;
    Result<std::unique_ptr<MIDIOwnSource>, OSStatus> createSource(std::string_view name) override;

  private:
    class Input;
    struct State;

    std::unique_ptr<State> state;
};

} // namespace orvane::platform::jack
