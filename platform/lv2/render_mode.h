#pragma once

namespace orvane::platform::lv2 {

/// What a host renders blocks for.
enum class RenderMode {
    /// For a device that does not wait: other threads do the plugins' deferred work meanwhile.
    live,
    /// For a file: deferred work is done at once, so that every rendering is the same, and plugins are
    /// notified through their free-wheeling ports.
    offline
};

} // namespace orvane::platform::lv2
