#pragma once

#include "platform/alsa/card_status.h"
#include "platform/alsa/configuration.h"

#include <optional>

namespace orvane::platform::alsa {

/// The configuration and the rate for looking up PCMs. Owned by the driver; one thread at a time.
struct PcmLookup {
    Configuration configuration;
    CardStatus cards;
    /// In Hz; the running or usual rate if absent or not offered.
    std::optional<unsigned> wantedRate;
};

} // namespace orvane::platform::alsa
