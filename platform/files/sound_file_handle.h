#pragma once

#include <sndfile.h>

#include <memory>
#include <string>

namespace orvane::platform {

/// Closes what libsndfile opened.
struct SoundFileCloser {
    void operator()(SNDFILE* file) const noexcept { sf_close(file); }
};

/// A file that libsndfile has open. Only for the sources of the sound file reader and writer: their headers
/// do not show the library.
using SoundFileHandle = std::unique_ptr<SNDFILE, SoundFileCloser>;

/// What went wrong last with `file`, as words for the end of a sentence, without a full stop. A null `file`
/// asks why the last opening failed.
std::string soundFileProblem(SNDFILE* file);

} // namespace orvane::platform
