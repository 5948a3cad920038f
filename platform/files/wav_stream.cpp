#include "platform/files/wav_stream.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <limits>
#include <string_view>

namespace orvane::platform {

namespace {

constexpr std::uint32_t greatestSize = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t formatChunkSize = 40;
constexpr std::uint32_t extensibleFormat = 0xFFFE;
constexpr std::uint32_t extensionSize = 22;
constexpr std::uint32_t sampleBits = 32;
/// The GUID of float samples, from its second byte on.
constexpr std::string_view floatSamples("\x03\0\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 16);
/// How long a stalled reader can delay the check of `isCancelled`, in milliseconds.
constexpr int longestStreamWait = 100;

void appendNumber(std::string& text, std::uint32_t number, int byteCount) {
    for (int byte = 0; byte < byteCount; ++byte)
        text += static_cast<char>(number >> (8 * byte) & 0xFFU);
}

} // namespace

std::string endlessWavHeader(std::size_t channelCount, std::size_t sampleRate) {
    const auto channels = static_cast<std::uint32_t>(channelCount);
    const auto rate = static_cast<std::uint32_t>(sampleRate);
    const std::uint32_t frameSize = channels * (sampleBits / CHAR_BIT);
    std::string header = "RIFF";
    appendNumber(header, greatestSize, 4);
    header += "WAVEfmt ";
    appendNumber(header, formatChunkSize, 4);
    appendNumber(header, extensibleFormat, 2);
    appendNumber(header, channels, 2);
    appendNumber(header, rate, 4);
    appendNumber(header, rate * frameSize, 4);
    appendNumber(header, frameSize, 2);
    appendNumber(header, sampleBits, 2);
    appendNumber(header, extensionSize, 2);
    appendNumber(header, sampleBits, 2);
    appendNumber(header, 0, 4);
    header += floatSamples;
    header += "data";
    appendNumber(header, greatestSize, 4);
    return header;
}

int writeToStream(
    int descriptor, std::span<const std::byte> bytes, const std::function<bool()>& isCancelled
) {
    while (!bytes.empty()) {
        if (isCancelled()) return ECANCELED;
        pollfd output{.fd = descriptor, .events = POLLOUT, .revents = 0};
        if (::poll(&output, 1, longestStreamWait) <= 0) continue;
        const ssize_t written =
            ::write(descriptor, bytes.data(), std::min<std::size_t>(bytes.size(), PIPE_BUF));
        if (written >= 0)
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        else if (errno != EINTR && errno != EAGAIN)
            return errno;
    }
    return 0;
}

} // namespace orvane::platform
