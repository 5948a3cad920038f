#include "engine/session_files.h"

#include "engine/session/mixer_json_document.h"

#include <new>
#include <utility>

namespace orvane::engine {

platform::Result<session::MixerDocumentData> readSession(const std::filesystem::path& path) try {
    auto read = session::MixerJSONDocument::read(path);
    if (!read) return platform::Error{"Couldn't read that settings file: " + read.error().description};
    return std::move(read).value().data;
} catch (const std::bad_alloc&) {
    return platform::Error{"Couldn't read that settings file: there is not enough memory for it."};
}

platform::Result<platform::Done>
exportSession(const session::MixerDocumentData& document, const std::filesystem::path& path) try {
    auto written = session::MixerJSONDocument{document}.write(path);
    if (!written) return platform::Error{"Export failed: " + written.error().description};
    return written;
} catch (const std::bad_alloc&) {
    return platform::Error{"Export failed: there is not enough memory to write the session."};
}

} // namespace orvane::engine
