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

/// A device's uid is this prefix and its PCM's name.
inline constexpr std::string_view uidPrefix = "alsa:";

/// Lists the devices, and remembers their descriptions for the times when they are busy. Owned by the driver;
/// one thread at a time, never an audio thread.
class DeviceList final {
  public:
    /// Whether a stream of this driver has the PCM with this name.
    using IsOurs = std::function<bool(const std::string& pcmName)>;

    /// Lists `names` or, if they are empty, the computer's hardware and the user's PCMs. `pcmLookup` must
    /// outlive it.
    DeviceList(const PcmLookup& pcmLookup, std::vector<std::string> names, IsOurs isOurs);

    /// Asks every device. Hardware comes first, by card and device, then sound servers, then devices that
    /// other programs use, whose names say so.
    [[nodiscard]] std::vector<AudioDriverDevice> devices();

    /// Asks a single device; absent if it does not exist.
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
