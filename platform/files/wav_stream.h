#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>

namespace orvane::platform {

// A WAV where its length cannot be filled in later, such as a pipe. Control threads.

/// The header of a WAV of 32-bit float samples that ends where its bytes end: it gives the greatest length.
std::string endlessWavHeader(std::size_t channelCount, std::size_t sampleRate);

/// Writes all bytes to a descriptor, in pieces that a pipe takes at once, waiting for its reader. Returns 0,
/// an error number, or ECANCELED once `isCancelled`.
int writeToStream(int descriptor, std::span<const std::byte> bytes, const std::function<bool()>& isCancelled);

} // namespace orvane::platform
