#include "engine/mix_values.h"

#include <cstddef>

namespace orvane::engine {

std::vector<dsp::ChannelAutomixSettings> automixSettings(const std::vector<session::ChannelStrip>& strips) {
    std::vector<dsp::ChannelAutomixSettings> settings;
    settings.reserve(strips.size() + 1);
    for (const session::ChannelStrip& strip : strips)
        settings.push_back(
            {.genderMode = strip.genderMode,
             .muted = strip.muted,
             .trim = strip.trim,
             .bypassed = strip.bypassed,
             .vocalRole = strip.vocalRole}
        );
    settings.push_back({.excludedFromMasterBus = true});
    return settings;
}

audio::InsertTable insertTable(const std::vector<session::ChannelStrip>& strips, const LivePlugins& plugins) {
    audio::InsertTable table;
    for (const session::ChannelStrip& strip : strips) {
        auto& contexts = table.pluginContexts.emplace_back();
        auto& flags = table.pluginBypassFlags.emplace_back();
        for (std::size_t slot = 0; slot < strip.pluginSlots.size(); ++slot) {
            const auto live = plugins.find({strip.id, slot});
            contexts.push_back(live == plugins.end() ? nullptr : live->second->renderContext);
            flags.push_back(strip.pluginSlots[slot].bypassed);
        }
    }
    return table;
}

} // namespace orvane::engine
