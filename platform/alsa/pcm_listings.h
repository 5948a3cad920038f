#pragma once

#include <string>
#include <vector>

namespace orvane::platform::alsa {

/// A PCM that may be a device. A plain value.
struct PcmListing {
    std::string pcmName;
    /// The display name.
    std::string title;
};

/// All PCMs of the computer's sound cards, by card and device. Their names contain the card's id, because its
/// number depends on the order of detection. Never an audio thread, as below.
[[nodiscard]] std::vector<PcmListing> hardwarePcms();

/// All PCMs that the system's and the user's configuration define by name.
[[nodiscard]] std::vector<PcmListing> configuredPcms();

} // namespace orvane::platform::alsa
