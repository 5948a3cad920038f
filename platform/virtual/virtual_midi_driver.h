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

/// Sources that are only there within the program: each is one of our own, there from its creation to its
/// destruction. What it sends reaches the inputs before `send` returns, and the listener hears of it on the
/// thread that creates or destroys it.
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

    /// Also held by what it gave out, so that tests may end things in any order.
    std::shared_ptr<State> state;
};

} // namespace orvane::platform::virtual_devices
