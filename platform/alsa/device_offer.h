#pragma once

#include "platform/alsa/pcm_lookup.h"
#include "platform/alsa/pcm_offer.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane::platform::alsa {

/// Both directions of a device, each as it could be opened or why it could not. Keeps the device open for as
/// long as it lives. One thread at a time, never an audio thread.
struct DeviceOffer {
    static DeviceOffer ask(const PcmLookup& lookup, const std::string& pcmName);

    Result<PcmOffer, ErrorNumber> playback;
    Result<PcmOffer, ErrorNumber> capture;
    /// In Hz, the best first.
    std::vector<unsigned> preferredRates;
    /// The periods that the device's buffer is to hold, if it can.
    unsigned preferredPeriods = 2;

    /// Settles the rate of all directions that were opened: the first of the preferred ones that all can,
    /// else the nearest to 48000; 0 if they have none in common.
    unsigned settleRate();

    /// Settles all that a stream has to: rate, layout and, as near to `wantedFrames` as the device can, the
    /// period, which is the same in both directions. Fails where there is no direction to play or hear in,
    /// or nothing that both can do. A capture direction that is busy stands back.
    Result<std::uint32_t, ErrorNumber> settle(std::uint32_t wantedFrames);
};

} // namespace orvane::platform::alsa
