#pragma once

namespace orvane::platform::lv2 {

/// What the blocks of a host's plugins are rendered for.
enum class RenderMode {
    /// For a device that does not wait: work that plugins hand on is done by other threads meanwhile.
    live,
    /// For a file that can wait: such work is done at once, so that every render of it is the same. Plugins
    /// that ask are told so.
    offline
};

} // namespace orvane::platform::lv2
