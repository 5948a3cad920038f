#pragma once

#include <string_view>

namespace orvane::platform::alsa {

/// What a PCM's name reveals about it.
enum class PcmKind {
    /// Hardware, or a PCM that the user has composed.
    device,
    /// Another way to a sound server.
    soundServer,
    /// A converter, an alias of hardware, or a PCM that another driver serves.
    notADevice,
};

/// Any thread.
[[nodiscard]] PcmKind kindOf(std::string_view pcmName) noexcept;

} // namespace orvane::platform::alsa
