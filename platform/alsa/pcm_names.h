#pragma once

#include <string_view>

namespace orvane::platform::alsa {

/// What a PCM's name tells of it.
enum class PcmKind {
    /// Hardware, or something that the user has put together.
    device,
    /// Another way to what a sound server plays and hears.
    soundServer,
    /// A converter, an alias of hardware, or what another driver serves.
    notADevice,
};

/// Any thread.
[[nodiscard]] PcmKind kindOf(std::string_view pcmName) noexcept;

} // namespace orvane::platform::alsa
