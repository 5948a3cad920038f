#pragma once

#include "platform/effects/audio_unit_host.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace orvane::platform::lv2 {

/// The main audio input or output of a unit, with one channel for each of the plugin's ports.
class Lv2Bus final : public AUAudioUnitBus {
  public:
    /// `busName`: the subject of error sentences ("the input of ..."). `isUnitBusy`: whether the unit holds
    /// render resources.
    Lv2Bus(
        std::string busName, std::uint32_t channelCount, double sampleRate, std::function<bool()> isUnitBusy
    )
        : name(std::move(busName)), current{sampleRate, channelCount}, isBusy(std::move(isUnitBusy)) {}

    Result<Done> setFormat(const AVAudioFormat& format) override;
    /// A unit's only input and output are always enabled.
    void setEnabled(bool) override {}

    [[nodiscard]] const AVAudioFormat& format() const { return current; }

  private:
    std::string name;
    AVAudioFormat current;
    std::function<bool()> isBusy;
};

} // namespace orvane::platform::lv2
