#pragma once

#include "platform/alsa/pcm_lookup.h"
#include "platform/alsa/pcm_offer.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane::platform::alsa {

/// Both directions of a device, each opened or with the reason why not. Keeps the device open as long as it
/// lives. One thread at a time, never an audio thread.
struct DeviceOffer {
    static DeviceOffer ask(const PcmLookup& lookup, const std::string& pcmName);

    Result<PcmOffer, ErrorNumber> playback;
    Result<PcmOffer, ErrorNumber> capture;
    /// In Hz, the best first.
    std::vector<unsigned> preferredRates;
    /// The preferred number of periods in the device's buffer.
    unsigned preferredPeriods = 2;

    /// Settles the rate of all opened directions: the first of the preferred ones that all support, otherwise
    /// the nearest to 48000; 0 if they have none in common.
    unsigned settleRate();

    /// Settles everything that a stream needs: rate, layout and the period, which is the same in both
    /// directions and as near to `wantedFrames` as possible. Fails if no direction can be used or they have
    /// nothing in common. A busy capture direction is left out.
    Result<std::uint32_t, ErrorNumber> settle(std::uint32_t wantedFrames);
};

} // namespace orvane::platform::alsa
