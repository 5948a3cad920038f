#pragma once

#include "platform/alsa/alsa_library.h"
#include "platform/alsa/configuration.h"
#include "platform/alsa/pcm.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace orvane::platform::alsa {

/// The possible configurations of one direction of a device, narrowed step by step: rate, layout, period,
/// then `settle`. Keeps the device open as long as it lives. One thread at a time, never an audio thread.
class PcmOffer final {
  public:
    /// Opens the PCM without resampling: its rates are the hardware's.
    static Result<PcmOffer, ErrorNumber> ask(const Configuration&, const std::string& pcmName, Direction);

    [[nodiscard]] bool takesRate(unsigned rate) const;
    [[nodiscard]] unsigned rateNear(unsigned rate) const;
    /// Requires `takesRate`.
    void settleRate(unsigned rate);

    /// All channels available at the settled rate, or two if the PCM takes any number.
    [[nodiscard]] std::size_t channelCount() const;

    /// Settles `channelCount` and the best format for it; returns false if there is none.
    [[nodiscard]] bool settleLayout();

    [[nodiscard]] std::uint32_t periodNear(std::uint32_t frameCount) const;
    /// Settles the period and a buffer of `periodCount` periods, or as few more as the device supports.
    /// Returns false if the device does not support the period.
    [[nodiscard]] bool settlePeriod(std::uint32_t frameCount, unsigned periodCount);

    /// Configures the device.
    [[nodiscard]] Result<Pcm, ErrorNumber> settle() &&;

  private:
    PcmOffer(PcmHandle opened, Direction streamDirection, std::size_t mostChannels);

    [[nodiscard]] bool settleAccess();
    [[nodiscard]] HardwareParameters copyOfParameters() const;

    PcmHandle pcm;
    Direction direction;
    std::size_t channelLimit;
    HardwareParameters parameters;
    PcmLayout layout;
};

} // namespace orvane::platform::alsa
