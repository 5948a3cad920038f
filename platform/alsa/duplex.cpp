#include "platform/alsa/duplex.h"

#include <utility>

namespace orvane::platform::alsa {

namespace {

/// Absent if the device does not have the direction.
Result<std::optional<Pcm>, ErrorNumber> configure(Result<PcmOffer, ErrorNumber> offer) {
    if (!offer && isAbsent(offer.error())) return std::optional<Pcm>();
    if (!offer) return offer.error();
    auto pcm = std::move(offer).value().settle();
    if (!pcm) return pcm.error();
    return std::optional(std::move(pcm).value());
}

} // namespace

Result<Duplex, ErrorNumber> Duplex::open(
    const PcmLookup& lookup, const std::string& pcmName, bool enableInput, std::uint32_t wantedFrames
) {
    DeviceOffer offer = DeviceOffer::ask(lookup, pcmName);
    const auto settled = offer.settle(wantedFrames);
    if (!settled) return settled.error();
    if (!enableInput) offer.capture = -ENOENT;

    auto playback = configure(std::move(offer.playback));
    if (!playback) return playback.error();
    auto capture = configure(std::move(offer.capture));
    if (!capture) return capture.error();
    Duplex device(std::move(playback).value(), std::move(capture).value());
    if (!device.playback && !device.capture) return -ENOENT;
    if (!device.playback || !device.capture) return device;
    if (device.playback->layout().periodFrames != device.capture->layout().periodFrames) return -ENOTSUP;
    device.playback->link(*device.capture);
    return device;
}

Duplex::Duplex(std::optional<Pcm> playbackSide, std::optional<Pcm> captureSide)
    : playback(std::move(playbackSide)), capture(std::move(captureSide)) {}

std::size_t Duplex::inputChannelCount() const noexcept {
    return capture ? capture->layout().channelCount : 0;
}

std::size_t Duplex::outputChannelCount() const noexcept {
    return playback ? playback->layout().channelCount : 0;
}

std::size_t Duplex::periodFrames() const noexcept {
    return (playback ? playback : capture)->layout().periodFrames;
}

void Duplex::drop() noexcept {
    if (playback) playback->drop();
    if (capture) capture->drop();
}

ErrorNumber Duplex::prepare() noexcept {
    drop();
    // Preparing one side of a linked pair empties the other, so silence is queued after both.
    if (playback)
        if (const ErrorNumber error = playback->prepare()) return error;
    if (capture)
        if (const ErrorNumber error = capture->prepare()) return error;
    return playback ? playback->fillWithSilence() : 0;
}

ErrorNumber Duplex::start() noexcept {
    if (playback)
        if (const ErrorNumber error = playback->start()) return error;
    return capture ? capture->start() : 0;
}

ErrorNumber Duplex::read(std::span<const std::span<float>> inputs) noexcept {
    return capture ? capture->read(inputs) : playback->wait();
}

ErrorNumber Duplex::write(std::span<const std::span<float>> outputs) noexcept {
    return playback ? playback->write(outputs) : 0;
}

} // namespace orvane::platform::alsa
