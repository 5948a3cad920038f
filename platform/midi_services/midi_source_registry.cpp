#include "platform/midi_services/midi_source_registry.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace orvane::platform {

namespace {

/// FNV-1a: the same on every computer.
std::int32_t hashOf(std::string_view text) {
    constexpr std::uint32_t offsetBasis = 2166136261U;
    constexpr std::uint32_t prime = 16777619U;
    std::uint32_t hash = offsetBasis;
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(character)) * prime;
    return static_cast<std::int32_t>(hash);
}

std::int32_t firstFreeID(const std::string& identity, const std::set<std::int32_t>& taken) {
    std::int32_t id = hashOf(identity);
    for (int number = 2; taken.contains(id); ++number)
        id = hashOf(identity + " #" + std::to_string(number));
    return id;
}

std::vector<MIDISource> withoutBridges(const std::vector<std::vector<MIDIDriverSource>>& listed) {
    std::vector<MIDISource> sources;
    std::set<std::string> direct;
    for (std::size_t driver = 0; driver < listed.size(); ++driver) {
        for (const MIDIDriverSource& source : listed[driver])
            if (!source.isBridge || !direct.contains(source.identity))
                sources.push_back(
                    {.name = source.name,
                     .driver = driver,
                     .address = source.address,
                     .identity = source.identity}
                );
        for (const MIDIDriverSource& source : listed[driver])
            if (!source.isBridge) direct.insert(source.identity);
    }
    return sources;
}

bool isSamePlace(const MIDISource& one, const MIDISource& other) {
    return one.driver == other.driver && one.address == other.address && one.identity == other.identity;
}

} // namespace

void MIDISourceRegistry::update(const std::vector<std::vector<MIDIDriverSource>>& listed) {
    std::vector<MIDISource> now = withoutBridges(listed);
    std::set<std::int32_t> taken;
    std::vector<MIDISource*> strangers;
    for (MIDISource& source : now) {
        const auto before =
            std::ranges::find_if(sources, [&](const auto& other) { return isSamePlace(other, source); });
        if (before == sources.end()) {
            strangers.push_back(&source);
            continue;
        }
        source.uniqueID = before->uniqueID;
        taken.insert(source.uniqueID);
    }
    for (MIDISource* source : strangers) {
        source->uniqueID = firstFreeID(source->identity, taken);
        taken.insert(source->uniqueID);
    }
    for (MIDISource& source : now) {
        const auto next = static_cast<MIDIEndpointRef>(endpoints.size() + 1);
        source.endpoint = endpoints.try_emplace(source.uniqueID, next).first->second;
        known[source.endpoint] = source;
    }
    sources = std::move(now);
}

const MIDISource* MIDISourceRegistry::find(MIDIEndpointRef endpoint) const {
    const auto found = known.find(endpoint);
    return found == known.end() ? nullptr : &found->second;
}

const MIDISource* MIDISourceRegistry::findPresent(MIDIEndpointRef endpoint) const {
    const auto found = std::ranges::find(sources, endpoint, &MIDISource::endpoint);
    return found == sources.end() ? nullptr : &*found;
}

} // namespace orvane::platform
