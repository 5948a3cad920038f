#pragma once

#include "platform/alsa/card_status.h"
#include "platform/alsa/configuration.h"

#include <optional>

namespace orvane::platform::alsa {

/// Where PCMs are found and what they are asked for. Owned by the driver; one thread at a time.
struct PcmLookup {
    Configuration configuration;
    CardStatus cards;
    /// In Hz; what runs already or is usual if absent or not offered.
    std::optional<unsigned> wantedRate;
};

} // namespace orvane::platform::alsa
