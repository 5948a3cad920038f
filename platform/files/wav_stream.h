#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>

namespace orvane::platform {

// WAV output whose length cannot be filled in later, as on a pipe. Control threads.

/// The header of a WAV of 32-bit float samples of unknown length: it states the maximum length.
std::string endlessWavHeader(std::size_t channelCount, std::size_t sampleRate);

/// Writes all bytes to a descriptor, in pieces that a pipe takes at once, and waits for its reader. Returns
/// 0, an errno value, or ECANCELED once `isCancelled`.
int writeToStream(int descriptor, std::span<const std::byte> bytes, const std::function<bool()>& isCancelled);

} // namespace orvane::platform
