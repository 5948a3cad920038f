#pragma once

#include <string>
#include <vector>

namespace orvane::platform::alsa {

/// A PCM that may be a device. A plain value.
struct PcmListing {
    std::string pcmName;
    /// For people.
    std::string title;
};

/// Every PCM of the machine's sound cards, by card and device, named by the card's id: the number of a card
/// changes with the order in which cards were found. Never an audio thread, like what follows.
[[nodiscard]] std::vector<PcmListing> hardwarePcms();

/// Every PCM that the system's and the user's configuration define by name.
[[nodiscard]] std::vector<PcmListing> configuredPcms();

} // namespace orvane::platform::alsa
