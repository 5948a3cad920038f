#pragma once

#include "platform/midi_services/midi_driver.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::virtual_devices {

/// MIDI sources that exist only within the program, each from its creation to its destruction. Messages reach
/// the inputs before `send` returns, and the listener is notified on the thread that creates or destroys a
/// source.
class VirtualMIDIDriver final : public MIDIDriver {
  public:
    VirtualMIDIDriver();
    ~VirtualMIDIDriver() override;

    std::vector<MIDIDriverSource> sources() override;
    void setSourcesListener(SourcesListener listener) override;
    std::unique_ptr<MIDIDriverInput> openInput(std::string_view name, Receiver receiver) override;
    /// Never fails.
    Result<std::unique_ptr<MIDIOwnSource>, OSStatus> createSource(std::string_view name) override;

  private:
    class Input;
    class Source;
    struct State;

    /// Shared with its sources and inputs, so that tests may destroy them in any order.
    std::shared_ptr<State> state;
};

} // namespace orvane::platform::virtual_devices
