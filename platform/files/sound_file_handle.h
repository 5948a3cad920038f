#pragma once

#include <sndfile.h>

#include <memory>
#include <string>

namespace orvane::platform {

/// Closes what libsndfile opened.
struct SoundFileCloser {
    void operator()(SNDFILE* file) const noexcept { sf_close(file); }
};

/// An open libsndfile file. Only for the sources of the sound file reader and writer: their headers hide the
/// library.
using SoundFileHandle = std::unique_ptr<SNDFILE, SoundFileCloser>;

/// The last failure of `file` as the end of a sentence, without a full stop. A null `file` gives the reason
/// of the last failed open.
std::string soundFileProblem(SNDFILE* file);

} // namespace orvane::platform
