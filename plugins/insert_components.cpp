#include "plugins/insert_components.h"

#include "platform/base/utf8.h"

#include <algorithm>
#include <iterator>
#include <locale>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

namespace orvane::plugins {

namespace {

using platform::AVAudioUnitComponent;

/// The language that the user's environment names, or the plain one if that is not installed.
std::locale userLocale() {
    try {
        return std::locale("");
    } catch (const std::runtime_error&) {
        return std::locale::classic();
    }
}

/// Makes texts that compare, by their characters, as the texts they stand for are sorted.
class SortKeys final {
  public:
    [[nodiscard]] std::wstring keyOf(const std::string& text) const {
        std::wstring folded;
        if (const auto characters = platform::decodeUTF8(text))
            folded.assign(characters->begin(), characters->end());
        else
            std::ranges::transform(text, std::back_inserter(folded), [](char byte) {
                return static_cast<unsigned char>(byte);
            });
        std::use_facet<std::ctype<wchar_t>>(locale).tolower(folded.data(), folded.data() + folded.size());
        return std::use_facet<std::collate<wchar_t>>(locale).transform(
            folded.data(), folded.data() + folded.size()
        );
    }

  private:
    std::locale locale = userLocale();
};

/// A component with what it is sorted by. Names that differ in case alone keep one order too.
struct Sortable {
    std::wstring maker;
    std::wstring name;
    AVAudioUnitComponent component;

    [[nodiscard]] auto rank() const {
        return std::tie(maker, name, component.manufacturerName, component.name);
    }
};

} // namespace

session::AUComponentIdentity identityOf(const AVAudioUnitComponent& component) {
    const platform::AudioComponentDescription& description = component.audioComponentDescription;
    return {
        .componentType = description.componentType,
        .componentSubType = description.componentSubType,
        .componentManufacturer = description.componentManufacturer};
}

std::vector<AVAudioUnitComponent> availableInsertComponents(platform::AudioUnitHost& host) {
    const SortKeys sortKeys;
    std::set<session::AUComponentIdentity> seen;
    std::vector<Sortable> found;
    for (const std::uint32_t type : {platform::kAudioUnitType_Effect, platform::kAudioUnitType_MusicEffect}) {
        for (AVAudioUnitComponent& component : host.componentsMatchingDescription({.componentType = type})) {
            if (!seen.insert(identityOf(component)).second) continue;
            found.push_back(
                {sortKeys.keyOf(component.manufacturerName), sortKeys.keyOf(component.name),
                 std::move(component)}
            );
        }
    }
    std::ranges::stable_sort(found, {}, &Sortable::rank);
    std::vector<AVAudioUnitComponent> components;
    components.reserve(found.size());
    for (Sortable& sortable : found)
        components.push_back(std::move(sortable.component));
    return components;
}

const AVAudioUnitComponent*
componentFor(const session::AUComponentIdentity& identity, std::span<const AVAudioUnitComponent> installed) {
    auto found = std::ranges::find(installed, identity, identityOf);
    if (found == installed.end())
        found = std::ranges::find_if(installed, [&](const AVAudioUnitComponent& component) {
            const session::AUComponentIdentity each = identityOf(component);
            return each.componentType == identity.componentType
                   && each.componentSubType == identity.componentSubType;
        });
    return found == installed.end() ? nullptr : &*found;
}

} // namespace orvane::plugins
