#pragma once

#include "engine/session/au_component_identity.h"
#include "engine/session/document_node.h"
#include "engine/session/json_writer.h"
#include "platform/base/uuid.h"

#include <cstdint>
#include <vector>

/// Value types that all JSON files of the application share. The readers note a fault of the node for
/// anything else.
namespace orvane::session {

platform::Uuid readUuid(const DocumentNode& node);

/// Decodes base64 text.
std::vector<std::uint8_t> readBytes(const DocumentNode& node);

AUComponentIdentity readComponent(const DocumentNode& node);
void writeComponent(JSONWriter& to, const AUComponentIdentity& component);

} // namespace orvane::session
