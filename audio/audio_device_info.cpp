#include "audio/audio_device_info.h"

namespace {

template <class Field>
void mix(std::size_t& seed, const Field& field) noexcept {
    constexpr std::size_t goldenRatio = 0x9e3779b97f4a7c15U;
    seed ^= std::hash<Field>{}(field) + goldenRatio + (seed << 6U) + (seed >> 2U);
}

} // namespace

std::size_t std::hash<orvane::audio::AudioDeviceInfo>::operator()(const orvane::audio::AudioDeviceInfo& device
) const noexcept {
    std::size_t seed = 0;
    mix(seed, device.id);
    mix(seed, device.uid);
    mix(seed, device.name);
    mix(seed, device.inputChannelCount);
    mix(seed, device.outputChannelCount);
    mix(seed, device.sampleRate);
    return seed;
}
