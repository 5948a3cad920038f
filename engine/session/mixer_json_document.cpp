#include "engine/session/mixer_json_document.h"

#include "engine/session/document_limits.h"
#include "engine/session/mixer_document_codec.h"
#include "platform/files/atomic_file.h"
#include "platform/files/read_file.h"

#include <span>
#include <utility>

namespace orvane::session {

platform::Result<MixerJSONDocument> MixerJSONDocument::read(const std::filesystem::path& path) {
    const auto content = platform::readFile(path, DocumentLimits{}.size);
    if (!content) return content.error();
    auto decoded = decodeMixerDocument(content.value());
    if (!decoded) return decoded.error();
    return MixerJSONDocument{std::move(decoded).value()};
}

platform::Result<platform::Done> MixerJSONDocument::write(const std::filesystem::path& path) const {
    const auto content = encodeMixerDocument(data);
    if (!content) return content.error();
    return platform::writeFileAtomically(path, std::as_bytes(std::span(content.value())));
}

} // namespace orvane::session
