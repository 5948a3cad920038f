#pragma once

#include "platform/effects/audio_unit_host.h"

namespace orvane::cli {

/// A machine without effects.
class NoAudioUnits final : public platform::AudioUnitHost {
  public:
    [[nodiscard]] std::vector<platform::AVAudioUnitComponent>
    componentsMatchingDescription(const platform::AudioComponentDescription&) override {
        return {};
    }

    void instantiate(
        const platform::AudioComponentDescription&, std::uint32_t, InstantiationCompletion completion
    ) override {
        completion(nullptr, platform::Error{"There are no plugins here"});
    }
};

} // namespace orvane::cli
