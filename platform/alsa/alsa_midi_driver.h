#pragma once

#include "platform/midi_services/midi_driver.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::alsa {

/// The MIDI sources of the ALSA sequencer: hardware and other programs' ports. One client, with a port for
/// each input and one for the system's announcements; a thread of the driver receives for all of them. If the
/// kernel has no sequencer or denies access, there are no sources; every call that needs it tries again.
class AlsaMIDIDriver final : public MIDIDriver {
  public:
    /// `programName`: the name of its clients, as other programs see it.
    explicit AlsaMIDIDriver(std::string programName = "ORVANE");
    ~AlsaMIDIDriver() override;

    std::vector<MIDIDriverSource> sources() override;
    void setSourcesListener(SourcesListener listener) override;
    std::unique_ptr<MIDIDriverInput> openInput(std::string_view name, Receiver receiver) override;
    Result<std::unique_ptr<MIDIOwnSource>, OSStatus> createSource(std::string_view name) override;

  private:
    class Input;
    struct State;

    std::unique_ptr<State> state;
};

} // namespace orvane::platform::alsa
