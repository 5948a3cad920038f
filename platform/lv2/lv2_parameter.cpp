#include "platform/lv2/lv2_parameter.h"

#include <algorithm>
#include <cmath>

namespace orvane::platform::lv2 {

Lv2Parameter::Lv2Parameter(const ControlPort& controlPort, double sampleRate)
    : described(controlPort), scaled(controlPort.info) {
    setSampleRate(sampleRate);
    current.store(scaled.defaultValue);
}

void Lv2Parameter::setSampleRate(double sampleRate) {
    const float factor = described.scalesWithSampleRate ? static_cast<float>(sampleRate) : 1.0F;
    scaled.minValue = described.info.minValue * factor;
    scaled.maxValue = described.info.maxValue * factor;
    scaled.defaultValue = described.info.defaultValue * factor;
    lowest.store(scaled.minValue);
    highest.store(scaled.maxValue);
    setValue(value());
}

void Lv2Parameter::setValue(float value) noexcept {
    if (described.info.isReadOnly || !std::isfinite(value)) return;
    current.store(nearestAllowed(value), std::memory_order_relaxed);
}

float Lv2Parameter::nearestAllowed(float value) const noexcept {
    const float kept =
        std::clamp(value, lowest.load(std::memory_order_relaxed), highest.load(std::memory_order_relaxed));
    switch (described.info.kind) {
    case AUParameterInfo::Kind::integer:
    case AUParameterInfo::Kind::toggle:
        return std::round(kept);
    case AUParameterInfo::Kind::choice:
        return std::ranges::min_element(
                   described.info.namedValues, {},
                   [&](const auto& named) { return std::abs(named.value - kept); }
        )->value;
    case AUParameterInfo::Kind::continuous:
        break;
    }
    return kept;
}

} // namespace orvane::platform::lv2
