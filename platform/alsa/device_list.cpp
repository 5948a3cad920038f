#include "platform/alsa/device_list.h"

#include "platform/alsa/pcm_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace orvane::platform::alsa {

namespace {

/// The channels of every output, and of a device in use that publishes nothing.
constexpr std::size_t stereo = 2;
constexpr unsigned usualRate = 48000;

std::size_t channelCountOf(const Result<PcmOffer, ErrorNumber>& offer) {
    return offer ? offer.value().channelCount() : 0;
}

bool isInUse(const Result<PcmOffer, ErrorNumber>& offer) {
    return !offer && isBusy(offer.error());
}

} // namespace

DeviceList::DeviceList(const PcmLookup& pcmLookup, std::vector<std::string> names, IsOurs isOurs)
    : lookup(pcmLookup), givenNames(std::move(names)), isOursNow(std::move(isOurs)) {}

std::vector<AudioDriverDevice> DeviceList::devices() {
    std::vector<AudioDriverDevice> free;
    std::vector<AudioDriverDevice> inUse;
    const std::vector<PcmListing> candidates = listings();
    for (const PcmKind kind : {PcmKind::device, PcmKind::soundServer})
        for (const PcmListing& listing : candidates) {
            if (kindOf(listing.pcmName) != kind) continue;
            auto device = describe(listing);
            // Only the name of a device in use differs from its title.
            if (device) (device->name == listing.title ? free : inUse).push_back(*std::move(device));
        }
    std::ranges::move(inUse, std::back_inserter(free));
    return free;
}

std::optional<AudioDriverDevice> DeviceList::device(std::string_view pcmName) {
    const std::vector<PcmListing> candidates = listings();
    const auto listing = std::ranges::find(candidates, pcmName, &PcmListing::pcmName);
    return listing == candidates.end() ? std::nullopt : describe(*listing);
}

std::vector<PcmListing> DeviceList::listings() const {
    std::vector<PcmListing> found;
    found.reserve(givenNames.size());
    for (const std::string& name : givenNames)
        found.push_back({.pcmName = name, .title = name});
    if (!found.empty()) return found;
    found = hardwarePcms();
    std::ranges::move(configuredPcms(), std::back_inserter(found));
    return found;
}

std::optional<AudioDriverDevice> DeviceList::describe(const PcmListing& listing) {
    DeviceOffer offer = DeviceOffer::ask(lookup, listing.pcmName);
    if (isInUse(offer.playback) || isInUse(offer.capture)) return describeBusy(listing, offer);
    if (!offer.playback && !offer.capture) return std::nullopt;
    const unsigned rate = offer.settleRate();
    AudioDriverDevice& known = knownByPcmName[listing.pcmName];
    known = {
        .uid = std::string(uidPrefix) + listing.pcmName,
        .name = listing.title,
        .inputChannelCount = channelCountOf(offer.capture),
        .outputChannelCount = channelCountOf(offer.playback),
        .sampleRate = static_cast<double>(rate)};
    return known;
}

AudioDriverDevice DeviceList::describeBusy(const PcmListing& listing, DeviceOffer& offer) const {
    const auto known = knownByPcmName.find(listing.pcmName);
    if (known != knownByPcmName.end() && isOursNow(listing.pcmName)) return known->second;
    const unsigned rate = offer.settleRate();
    const auto channels = [&](Direction direction, const Result<PcmOffer, ErrorNumber>& asked) {
        if (!isInUse(asked)) return channelCountOf(asked);
        const auto use = lookup.cards.use(listing.pcmName, direction);
        return use ? use->channelCount : stereo;
    };
    AudioDriverDevice device = known != knownByPcmName.end()
                                   ? known->second
                                   : AudioDriverDevice{
                                       .uid = std::string(uidPrefix) + listing.pcmName,
                                       .name = listing.title,
                                       .inputChannelCount = channels(Direction::capture, offer.capture),
                                       .outputChannelCount = channels(Direction::playback, offer.playback),
                                       .sampleRate = static_cast<double>(rate == 0 ? usualRate : rate)};
    if (const auto current = lookup.cards.currentRate(listing.pcmName)) device.sampleRate = *current;
    const std::string user = lookup.cards.userOf(listing.pcmName);
    device.name += fmt::format(" (in use by {})", user.empty() ? "another program" : user);
    return device;
}

} // namespace orvane::platform::alsa
