#include "platform/alsa_audio/device_offer.h"

#include <algorithm>
#include <vector>

namespace orvane::platform::alsa_audio {

namespace {

constexpr unsigned preferredRate = 48000;
constexpr unsigned secondRate = 44100;

std::vector<PcmOffer*> openedOnes(DeviceOffer& device) {
    std::vector<PcmOffer*> opened;
    for (auto* direction : {&device.playback, &device.capture})
        if (*direction) opened.push_back(&direction->value());
    return opened;
}

Result<std::uint32_t, ErrorNumber>
settlePeriod(const std::vector<PcmOffer*>& opened, std::uint32_t wantedFrames) {
    std::uint32_t frames = wantedFrames;
    for (const PcmOffer* offer : opened)
        frames = offer->periodNear(frames);
    for (PcmOffer* offer : opened)
        if (!offer->settlePeriod(frames)) return -ENOTSUP;
    return frames;
}

} // namespace

DeviceOffer DeviceOffer::ask(const Configuration& configuration, const std::string& pcmName) {
    return {
        .playback = PcmOffer::ask(configuration, pcmName, Direction::playback),
        .capture = PcmOffer::ask(configuration, pcmName, Direction::capture)};
}

unsigned DeviceOffer::settleRate() {
    const auto opened = openedOnes(*this);
    if (opened.empty()) return 0;
    for (const unsigned rate : {preferredRate, secondRate, opened.front()->rateNear(preferredRate)}) {
        if (!std::ranges::all_of(opened, [rate](const PcmOffer* offer) { return offer->takesRate(rate); }))
            continue;
        for (PcmOffer* offer : opened)
            offer->settleRate(rate);
        return rate;
    }
    return 0;
}

Result<std::uint32_t, ErrorNumber> DeviceOffer::settle(std::uint32_t wantedFrames) {
    if (!playback && !isAbsent(playback.error())) return playback.error();
    if (!playback && !capture) return isAbsent(capture.error()) ? playback.error() : capture.error();
    if (settleRate() == 0) return -ENOTSUP;
    const auto opened = openedOnes(*this);
    for (PcmOffer* offer : opened)
        if (!offer->settleLayout()) return -ENOTSUP;
    return settlePeriod(opened, wantedFrames);
}

} // namespace orvane::platform::alsa_audio
