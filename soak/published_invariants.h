#pragma once

#include "engine/mixer_engine.h"
#include "soak/fault.h"

#include <vector>

namespace orvane::soak {

/// The invariants of an engine's published values between two operations, running or stopped. Main thread.
class PublishedInvariants final {
  public:
    /// Both arguments must outlive it.
    PublishedInvariants(const engine::MixerEngine& watched, Fault& found);

    /// Must be called between operations.
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
