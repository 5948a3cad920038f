#pragma once

namespace orvane::platform::pipewire {

/// Whether a PipeWire server answers at the socket that its clients use: $PIPEWIRE_REMOTE, or else
/// "pipewire-0", in $PIPEWIRE_RUNTIME_DIR or else $XDG_RUNTIME_DIR. Any thread.
bool isPipeWireRunning();

} // namespace orvane::platform::pipewire
