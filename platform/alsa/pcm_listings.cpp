#include "platform/alsa/pcm_listings.h"

#include "platform/alsa/alsa_library.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

namespace orvane::platform::alsa {

namespace {

using CardInfo = std::unique_ptr<snd_ctl_card_info_t, Release<snd_ctl_card_info_free>>;
using PcmInfo = std::unique_ptr<snd_pcm_info_t, Release<snd_pcm_info_free>>;
using Text = std::unique_ptr<char, Release<std::free>>;

/// The card's name for one of its devices, which may have only one direction; empty if it has none.
std::string pcmTitle(snd_ctl_t* control, int device) {
    const PcmInfo info = makeRecord<snd_pcm_info_malloc, snd_pcm_info_free, snd_pcm_info_t>();
    for (const auto stream : {SND_PCM_STREAM_PLAYBACK, SND_PCM_STREAM_CAPTURE}) {
        snd_pcm_info_set_device(info.get(), static_cast<unsigned>(device));
        snd_pcm_info_set_subdevice(info.get(), 0);
        snd_pcm_info_set_stream(info.get(), stream);
        if (snd_ctl_pcm_info(control, info.get()) == 0) return snd_pcm_info_get_name(info.get());
    }
    return {};
}

void addPcmsOfCard(std::vector<PcmListing>& listings, int card) {
    snd_ctl_t* opened = nullptr;
    if (snd_ctl_open(&opened, ("hw:" + std::to_string(card)).c_str(), SND_CTL_READONLY) < 0) return;
    const ControlHandle control(opened);
    const CardInfo info = makeRecord<snd_ctl_card_info_malloc, snd_ctl_card_info_free, snd_ctl_card_info_t>();
    if (snd_ctl_card_info(control.get(), info.get()) < 0) return;
    const std::string id = snd_ctl_card_info_get_id(info.get());
    const std::string name = snd_ctl_card_info_get_name(info.get());
    for (int device = -1; snd_ctl_pcm_next_device(control.get(), &device) == 0 && device >= 0;) {
        const std::string title = pcmTitle(control.get(), device);
        listings.push_back(
            {.pcmName = fmt::format("hw:CARD={},DEV={}", id, device),
             .title = title.empty() || title == name ? name : fmt::format("{}, {}", name, title)}
        );
    }
}

std::string hintText(const void* hint, const char* key) {
    const Text text(snd_device_name_get_hint(hint, key));
    return text ? text.get() : "";
}

PcmListing listingOf(const void* hint) {
    PcmListing listing{.pcmName = hintText(hint, "NAME"), .title = hintText(hint, "DESC")};
    // Further lines describe how the PCM is built.
    listing.title.resize(std::min(listing.title.size(), listing.title.find('\n')));
    if (listing.title.empty()) listing.title = listing.pcmName;
    return listing;
}

} // namespace

std::vector<PcmListing> hardwarePcms() {
    std::vector<PcmListing> listings;
    for (int card = -1; snd_card_next(&card) == 0 && card >= 0;)
        addPcmsOfCard(listings, card);
    return listings;
}

std::vector<PcmListing> configuredPcms() {
    void** hints = nullptr;
    if (snd_device_name_hint(-1, "pcm", &hints) < 0) return {};
    std::vector<PcmListing> listings;
    for (void** hint = hints; *hint != nullptr; ++hint) {
        PcmListing listing = listingOf(*hint);
        // A name with arguments leads to a card, whose hardware is listed separately.
        if (listing.pcmName.find(':') == std::string::npos) listings.push_back(std::move(listing));
    }
    snd_device_name_free_hint(hints);
    return listings;
}

} // namespace orvane::platform::alsa
