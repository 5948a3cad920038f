#pragma once

#include "platform/alsa/device_offer.h"
#include "platform/alsa/pcm_listings.h"
#include "platform/alsa/pcm_lookup.h"
#include "platform/audio_hardware/audio_driver.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::alsa {

/// A device's uid is this and its PCM's name.
inline constexpr std::string_view uidPrefix = "alsa:";

/// Finds out which devices there are and remembers what it has learnt, for the times when a device is busy.
/// Owned by the driver; one thread at a time, never an audio thread.
class DeviceList final {
  public:
    /// Whether a stream of this driver has the PCM of that name.
    using IsOurs = std::function<bool(const std::string& pcmName)>;

    /// Lists the machine's hardware and the user's PCMs or, if there are any, the `names`. `pcmLookup`
    /// outlives it.
    DeviceList(const PcmLookup& pcmLookup, std::vector<std::string> names, IsOurs isOurs);

    /// Asks every device; hardware first, by card and device, then sound servers, then what other programs
    /// use: their names say so.
    [[nodiscard]] std::vector<AudioDriverDevice> devices();

    /// Asks one device only; nothing if it is not there.
    [[nodiscard]] std::optional<AudioDriverDevice> device(std::string_view pcmName);

  private:
    [[nodiscard]] std::vector<PcmListing> listings() const;
    [[nodiscard]] std::optional<AudioDriverDevice> describe(const PcmListing& listing);
    [[nodiscard]] AudioDriverDevice describeBusy(const PcmListing& listing, DeviceOffer& offer) const;

    const PcmLookup& lookup;
    std::vector<std::string> givenNames;
    const IsOurs isOursNow;
    std::map<std::string, AudioDriverDevice> knownByPcmName;
};

} // namespace orvane::platform::alsa
