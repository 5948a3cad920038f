#include "platform/alsa_audio/device_list.h"

#include "platform/alsa_audio/device_offer.h"
#include "platform/alsa_audio/pcm_names.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace orvane::platform::alsa_audio {

namespace {

std::size_t channelCountOf(const Result<PcmOffer, ErrorNumber>& offer) {
    return offer ? offer.value().channelCount() : 0;
}

bool isHeldBySomebody(const Result<PcmOffer, ErrorNumber>& offer) {
    return !offer && isBusy(offer.error());
}

} // namespace

DeviceList::DeviceList(const Configuration& lookup, std::vector<std::string> names)
    : configuration(lookup), givenNames(std::move(names)) {}

std::vector<AudioDriverDevice> DeviceList::devices() {
    std::vector<AudioDriverDevice> devices;
    const std::vector<PcmListing> candidates = listings();
    for (const PcmKind kind : {PcmKind::device, PcmKind::soundServer})
        for (const PcmListing& listing : candidates)
            if (kindOf(listing.pcmName) == kind) addTo(devices, listing);
    return devices;
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

void DeviceList::addTo(std::vector<AudioDriverDevice>& devices, const PcmListing& listing) {
    DeviceOffer offer = DeviceOffer::ask(configuration, listing.pcmName);
    const bool isBusyNow = isHeldBySomebody(offer.playback) || isHeldBySomebody(offer.capture);
    if (!isBusyNow && !offer.playback && !offer.capture) return;
    const auto [known, isNew] = knownByPcmName.try_emplace(listing.pcmName);
    if (isNew || !isBusyNow) {
        const unsigned rate = offer.settleRate();
        known->second = {
            .uid = std::string(uidPrefix) + listing.pcmName,
            .name = listing.title,
            .inputChannelCount = channelCountOf(offer.capture),
            .outputChannelCount = channelCountOf(offer.playback),
            .sampleRate = static_cast<double>(rate)};
    }
    devices.push_back(known->second);
}

} // namespace orvane::platform::alsa_audio
