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
    /// For people.
    std::string name = {};
    /// Which driver's it is, in their order, and where that finds it.
    std::size_t driver = 0;
    std::string address = {};
    std::string identity = {};

    bool operator==(const MIDISource&) const = default;
};

/// Sees the sources of all drivers as one list, without those that only pass on what an earlier driver lists
/// itself, and gives each a unique id: the hash of its identity, and for further sources of the same identity
/// that of the identity with a number, in the order of the lists. A source keeps its id as long as it stays
/// where it is. One thread at a time.
class MIDISourceRegistry final {
  public:
    /// Takes what each driver lists now.
    void update(const std::vector<std::vector<MIDIDriverSource>>& listed);

    [[nodiscard]] const std::vector<MIDISource>& present() const { return sources; }

    /// A source that is or was there, as it was last; null where there never was one.
    [[nodiscard]] const MIDISource* find(MIDIEndpointRef endpoint) const;
    /// Null also where it is gone.
    [[nodiscard]] const MIDISource* findPresent(MIDIEndpointRef endpoint) const;

  private:
    std::vector<MIDISource> sources;
    std::map<std::int32_t, MIDIEndpointRef> endpoints;
    std::map<MIDIEndpointRef, MIDISource> known;
};

} // namespace orvane::platform
