#pragma once

#include "plugins/insert_render_context.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace orvane::audio {

/// The loaded inserts of every strip in slot order. Never changed once it is built; it shares the contexts
/// with whoever loaded them, and goes back to the control side to let go of them.
struct InsertTable {
    /// Per strip, per slot: the effect to run, or nothing.
    std::vector<std::vector<std::shared_ptr<plugins::InsertRenderContext>>> pluginContexts;
    /// Per strip, per slot: true = skipped. A missing flag means not bypassed.
    std::vector<std::vector<bool>> pluginBypassFlags;

    /// Real-time safe.
    [[nodiscard]] bool isBypassed(std::size_t strip, std::size_t slot) const noexcept {
        return strip < pluginBypassFlags.size() && slot < pluginBypassFlags[strip].size()
               && pluginBypassFlags[strip][slot];
    }
};

} // namespace orvane::audio
