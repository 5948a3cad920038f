#include "cli/mix_setup.h"

#include <vector>

namespace orvane::cli {

std::optional<platform::Error> setUpMix(
    engine::MixerEngine& engine, const std::optional<session::MixerDocumentData>& document,
    const OutputOverrides& overrides
) {
    engine.resetRoutingOneToOne();
    engine.allOutputsOff();
    if (document) {
        // Iterates over a copy, because every edit replaces the list.
        for (const session::ChannelStrip& strip : std::vector(engine.state().channelStrips.get()))
            engine.setInputChannel(strip.id, std::nullopt);
        if (const auto loaded = engine.loadDocument(*document); !loaded) return loaded.error();
    } else {
        const auto& master = engine.state().masterOutputDevice.get();
        if ((master ? master : engine.state().selectedDevice.get())->outputChannelCount >= 2)
            engine.setMasterOutputRouting(session::master_output::Stereo{0, 1});
        else
            engine.setMasterOutputChannel(0);
    }
    engine.setOutputOptions(overrides.appliedTo(engine.state().master.get().outputOptions));
    return std::nullopt;
}

} // namespace orvane::cli
