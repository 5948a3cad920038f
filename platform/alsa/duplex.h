#pragma once

#include "dsp/realtime.h"
#include "platform/alsa/device_offer.h"
#include "platform/alsa/pcm.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace orvane::platform::alsa {

/// An open device: a playback and a capture PCM that run together at one rate and period, or one of them.
/// Owned by a stream; one thread at a time; real-time safe as far as `Pcm` is.
class Duplex final {
  public:
    /// Opens the device with a period as near to `wantedFrames` as possible. Without `enableInput` the
    /// capture side takes part in the choice of rate and period, so that they do not depend on it, and is
    /// then closed.
    static Result<Duplex, ErrorNumber>
    open(const PcmLookup& lookup, const std::string& pcmName, bool enableInput, std::uint32_t wantedFrames);

    [[nodiscard]] std::size_t inputChannelCount() const noexcept;
    [[nodiscard]] std::size_t outputChannelCount() const noexcept;
    [[nodiscard]] std::size_t periodFrames() const noexcept;

    /// Drops all queued samples and stops.
    ORVANE_REALTIME void drop() noexcept;

    /// Makes both sides ready to start, from any state, with silence to play.
    ORVANE_REALTIME ErrorNumber prepare() noexcept;

    /// Starts both sides, simultaneously if the device can.
    ORVANE_REALTIME ErrorNumber start() noexcept;

    /// Waits for the next period and fills `inputs`; without inputs, waits for room to play.
    ORVANE_REALTIME ErrorNumber read(std::span<const std::span<float>> inputs) noexcept;

    /// Plays a period, if there is a playback side.
    ORVANE_REALTIME ErrorNumber write(std::span<const std::span<float>> outputs) noexcept;

  private:
    Duplex(std::optional<Pcm> playbackSide, std::optional<Pcm> captureSide);

    std::optional<Pcm> playback;
    std::optional<Pcm> capture;
};

} // namespace orvane::platform::alsa
