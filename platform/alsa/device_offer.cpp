#include "platform/alsa/device_offer.h"

#include <algorithm>
#include <vector>

namespace orvane::platform::alsa {

namespace {

constexpr unsigned usualRate = 48000;
constexpr unsigned secondRate = 44100;
/// USB moves samples in packets of up to a millisecond, which two short periods do not always span.
constexpr unsigned usbPeriods = 3;
constexpr unsigned usualPeriods = 2;

std::vector<PcmOffer*> openedOnes(DeviceOffer& device) {
    std::vector<PcmOffer*> opened;
    for (auto* direction : {&device.playback, &device.capture})
        if (*direction) opened.push_back(&direction->value());
    return opened;
}

std::vector<unsigned> preferredRatesOf(const PcmLookup& lookup, const std::string& pcmName) {
    std::vector<unsigned> rates;
    for (const auto& rate : {lookup.wantedRate, lookup.cards.currentRate(pcmName)})
        if (rate) rates.push_back(*rate);
    rates.insert(rates.end(), {usualRate, secondRate});
    return rates;
}

Result<std::uint32_t, ErrorNumber>
settlePeriod(const std::vector<PcmOffer*>& opened, std::uint32_t wantedFrames, unsigned periods) {
    std::uint32_t frames = wantedFrames;
    for (const PcmOffer* offer : opened)
        frames = offer->periodNear(frames);
    for (PcmOffer* offer : opened)
        if (!offer->settlePeriod(frames, periods)) return -ENOTSUP;
    return frames;
}

} // namespace

DeviceOffer DeviceOffer::ask(const PcmLookup& lookup, const std::string& pcmName) {
    return {
        .playback = PcmOffer::ask(lookup.configuration, pcmName, Direction::playback),
        .capture = PcmOffer::ask(lookup.configuration, pcmName, Direction::capture),
        .preferredRates = preferredRatesOf(lookup, pcmName),
        .preferredPeriods = lookup.cards.isUsb(pcmName) ? usbPeriods : usualPeriods};
}

unsigned DeviceOffer::settleRate() {
    const auto opened = openedOnes(*this);
    if (opened.empty()) return 0;
    std::vector<unsigned> rates = preferredRates;
    rates.push_back(opened.front()->rateNear(usualRate));
    for (const unsigned rate : rates) {
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
    return settlePeriod(opened, wantedFrames, preferredPeriods);
}

} // namespace orvane::platform::alsa
