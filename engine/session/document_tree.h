#pragma once

#include "engine/session/document_keys.h"
#include "engine/session/document_limits.h"
#include "platform/base/result.h"

#include <nlohmann/json.hpp>

#include <string_view>

namespace orvane::session {

/// The values of a JSON text that something can be made of. A key without a meaning stands with null for
/// whatever it held, so that the tree of a large file of something else stays small.
struct DocumentTree {
    DocumentTree() = default;
    DocumentTree(DocumentTree&&) noexcept = default;
    DocumentTree& operator=(DocumentTree&&) = delete;
    /// Needs no memory, which the library would take as much of again as the tree has, and end the program
    /// where there is none.
    ~DocumentTree();

    nlohmann::json root;
};

/// Whether a kind of file gives a meaning to a key anywhere.
using IsKnownKey = bool (*)(std::string_view key);

/// Reads a JSON text, a session's unless other keys are known. Fails, naming the place, for anything but one
/// well-formed text within the limits, for a known key that an object has twice and for a number that no
/// double can hold. Parts without a meaning may repeat keys and nest as they like.
platform::Result<DocumentTree> parseDocumentTree(
    std::string_view text, IsKnownKey isKnown = key::isKnown, const DocumentLimits& limits = {}
);

} // namespace orvane::session
