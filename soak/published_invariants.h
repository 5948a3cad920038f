#pragma once

#include "engine/mixer_engine.h"
#include "soak/fault.h"

#include <vector>

namespace orvane::soak {

/// What must hold of an engine's published values between any two operations, whether it runs or not. Main
/// thread.
class PublishedInvariants final {
  public:
    /// Both outlive it.
    PublishedInvariants(const engine::MixerEngine& watched, Fault& found);

    /// To be called between operations.
    void check();

  private:
    void checkStrips();
    void checkScenes();
    void checkAutomix(const dsp::AutomixProcessor& automix);

    const engine::MixerEngine& engine;
    Fault& fault;
    std::vector<platform::Uuid> strips;
};

} // namespace orvane::soak
