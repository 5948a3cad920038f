#pragma once

#include "dsp/realtime.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/lv2/plugin_description.h"

#include <atomic>
#include <cstdint>

namespace orvane::platform::lv2 {

/// The value of a control port, shared by editors and the render thread. Owned by its unit.
class Lv2Parameter final : public AUParameter {
  public:
    /// `sampleRate` in Hz scales the range if the port asks for it.
    Lv2Parameter(const ControlPort& controlPort, double sampleRate);

    [[nodiscard]] const AUParameterInfo& info() const override { return scaled; }
    [[nodiscard]] float value() const noexcept override { return current.load(std::memory_order_relaxed); }
    void setValue(float value) noexcept override;

    [[nodiscard]] std::uint32_t port() const noexcept { return described.index; }
    /// Whether it can be set and is part of the plugin's state.
    [[nodiscard]] bool isSetting() const { return !described.info.isReadOnly && !described.isTrigger; }

    /// Sets the value of an output. Render thread, real-time safe.
    ORVANE_REALTIME void setOutput(float value) noexcept { current.store(value, std::memory_order_relaxed); }

    /// Rescales the range if the port asks for it. Main thread.
    void setSampleRate(double sampleRate);

  private:
    [[nodiscard]] float nearestAllowed(float value) const noexcept;

    ControlPort described;
    AUParameterInfo scaled;
    std::atomic<float> lowest;
    std::atomic<float> highest;
    std::atomic<float> current;
};

} // namespace orvane::platform::lv2
