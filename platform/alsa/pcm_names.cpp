#include "platform/alsa/pcm_names.h"

#include <algorithm>
#include <array>
#include <span>

namespace orvane::platform::alsa {

namespace {

using namespace std::string_view_literals;

constexpr std::array soundServers{"default"sv, "sysdefault"sv, "pipewire"sv, "pulse"sv};

/// Querying JACK's could start a server, and its channels are available directly.
constexpr std::array notDevices{
    "a52"sv,        "center_lfe"sv, "dmix"sv,       "dsnoop"sv,     "front"sv,      "hdmi"sv,
    "hw"sv,         "iec958"sv,     "jack"sv,       "lavrate"sv,    "modem"sv,      "null"sv,
    "oss"sv,        "phoneline"sv,  "plug"sv,       "plughw"sv,     "rear"sv,       "samplerate"sv,
    "side"sv,       "spdif"sv,      "speex"sv,      "speexrate"sv,  "surround21"sv, "surround40"sv,
    "surround41"sv, "surround50"sv, "surround51"sv, "surround71"sv, "upmix"sv,      "usbstream"sv,
    "vdownmix"sv};

bool isAmong(std::span<const std::string_view> names, std::string_view name) noexcept {
    return std::ranges::find(names, name) != names.end();
}

} // namespace

PcmKind kindOf(std::string_view pcmName) noexcept {
    const std::string_view definition = pcmName.substr(0, pcmName.find(':'));
    const bool isOfOneCard = definition.size() < pcmName.size();
    if (definition == "hw" && isOfOneCard) return PcmKind::device;
    if (isAmong(notDevices, definition)) return PcmKind::notADevice;
    if (!isAmong(soundServers, definition)) return PcmKind::device;
    return isOfOneCard ? PcmKind::notADevice : PcmKind::soundServer;
}

} // namespace orvane::platform::alsa
