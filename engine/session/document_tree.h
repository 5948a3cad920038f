#pragma once

#include "engine/session/document_keys.h"
#include "engine/session/document_limits.h"
#include "platform/base/result.h"

#include <nlohmann/json.hpp>

#include <string_view>

namespace orvane::session {

/// The known parts of a JSON text. Unknown keys are kept with the value null, so that the tree of a large
/// unrelated file stays small.
struct DocumentTree {
    DocumentTree() = default;
    DocumentTree(DocumentTree&&) noexcept = default;
    DocumentTree& operator=(DocumentTree&&) = delete;
    /// Allocates nothing, whereas the library's own destructor would need as much memory as the tree and end
    /// the program without it.
    ~DocumentTree();

    nlohmann::json root;
};

/// Whether a kind of file uses a key anywhere.
using IsKnownKey = bool (*)(std::string_view key);

/// Parses a JSON text, a session unless `isKnown` is given. Fails, with the position, if the text is not a
/// single well-formed value within the limits, an object repeats a known key, or a number exceeds the range
/// of a double. Unknown parts may repeat keys and nest without limit.
platform::Result<DocumentTree> parseDocumentTree(
    std::string_view text, IsKnownKey isKnown = key::isKnown, const DocumentLimits& limits = {}
);

} // namespace orvane::session
