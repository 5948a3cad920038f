#pragma once

#include "platform/midi_services/midi_driver.h"
#include "platform/midi_services/midi_services.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orvane::platform {

/// A source of the services. A plain value.
struct MIDISource {
    MIDIEndpointRef endpoint = 0;
    std::int32_t uniqueID = 0;
    /// The display name.
    std::string name = {};
    /// The driver's index, and the driver's address for the source.
    std::size_t driver = 0;
    std::string address = {};
    std::string identity = {};

    bool operator==(const MIDISource&) const = default;
};

/// Merges the sources of all drivers into one list, without those that only pass on what an earlier driver
/// lists itself, and gives each a unique id: the hash of its identity. Further sources of the same identity
/// hash it with a number, in list order. A source keeps its id while it stays at its address. One thread at a
/// time.
class MIDISourceRegistry final {
  public:
    /// Updates the sources from each driver's current list.
    void update(const std::vector<std::vector<MIDIDriverSource>>& listed);

    [[nodiscard]] const std::vector<MIDISource>& present() const { return sources; }

    /// The last state of a current or former source; null if it never existed.
    [[nodiscard]] const MIDISource* find(MIDIEndpointRef endpoint) const;
    /// Also null if the source has gone.
    [[nodiscard]] const MIDISource* findPresent(MIDIEndpointRef endpoint) const;

  private:
    std::vector<MIDISource> sources;
    std::map<std::int32_t, MIDIEndpointRef> endpoints;
    std::map<MIDIEndpointRef, MIDISource> known;
};

} // namespace orvane::platform
