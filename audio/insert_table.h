#pragma once

#include "dsp/realtime.h"
#include "plugins/insert_render_context.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace orvane::audio {

/// The loaded inserts of every strip in slot order. Never changed once it is built. It shares the contexts
/// with the rack that loaded them; the control side destroys it.
struct InsertTable {
    /// Per strip, per slot: the effect to run; null if the slot is empty.
    std::vector<std::vector<std::shared_ptr<plugins::InsertRenderContext>>> pluginContexts;
    /// Per strip, per slot: true = skipped. A missing flag means not bypassed.
    std::vector<std::vector<bool>> pluginBypassFlags;

    /// Real-time safe, like all that follow.
    [[nodiscard]] bool isBypassed(std::size_t strip, std::size_t slot) const noexcept {
        return strip < pluginBypassFlags.size() && slot < pluginBypassFlags[strip].size()
               && pluginBypassFlags[strip][slot];
    }

    /// Whether the strip has an effect to run.
    [[nodiscard]] bool hasInserts(std::size_t strip) const noexcept {
        if (strip >= pluginContexts.size()) return false;
        const auto& slots = pluginContexts[strip];
        for (std::size_t slot = 0; slot < slots.size(); ++slot)
            if (slots[slot] && !isBypassed(strip, slot)) return true;
        return false;
    }

    /// Runs the strip's effects over its block, each on the output of the one before.
    ORVANE_REALTIME void render(std::size_t strip, std::span<double> block) const noexcept {
        if (strip >= pluginContexts.size()) return;
        const auto& slots = pluginContexts[strip];
        for (std::size_t slot = 0; slot < slots.size(); ++slot)
            if (slots[slot] && !isBypassed(strip, slot))
                slots[slot]->process(block, static_cast<std::int64_t>(block.size()));
    }
};

} // namespace orvane::audio
