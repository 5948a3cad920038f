#pragma once

#include "platform/alsa_audio/configuration.h"
#include "platform/alsa_audio/pcm_listings.h"
#include "platform/audio_driver.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::alsa_audio {

/// A device's uid is this and its PCM's name.
inline constexpr std::string_view uidPrefix = "alsa:";

/// Finds out which devices there are and remembers what it has learnt, for the times when a device is busy.
/// Owned by the driver; one thread at a time, never an audio thread.
class DeviceList final {
  public:
    /// Lists the machine's hardware and the user's PCMs or, where there are any, the `names`.
    DeviceList(const Configuration& lookup, std::vector<std::string> names);

    /// Asks every device; hardware first, by card and device, sound servers last.
    [[nodiscard]] std::vector<AudioDriverDevice> devices();

  private:
    [[nodiscard]] std::vector<PcmListing> listings() const;
    void addTo(std::vector<AudioDriverDevice>& devices, const PcmListing& listing);

    const Configuration& configuration;
    std::vector<std::string> givenNames;
    std::map<std::string, AudioDriverDevice> knownByPcmName;
};

} // namespace orvane::platform::alsa_audio
