#include "engine/session/document_values.h"

#include "engine/session/displayed_text.h"
#include "engine/session/document_keys.h"
#include "platform/base/base64.h"

#include <limits>
#include <utility>

namespace orvane::session {

namespace {

std::uint32_t readComponentCode(const DocumentNode& node) {
    return static_cast<std::uint32_t>(node.integer(0, std::numeric_limits<std::uint32_t>::max()));
}

} // namespace

platform::Uuid readUuid(const DocumentNode& node) {
    const auto uuid = platform::Uuid::parse(node.text());
    if (!uuid) node.fail("is not a UUID: \"" + displayed(node.text()) + '"');
    return uuid.value_or(platform::Uuid{});
}

std::vector<std::uint8_t> readBytes(const DocumentNode& node) {
    auto bytes = platform::decodeBase64(node.text());
    if (!bytes) node.fail("is not base64 text");
    return std::move(bytes).value_or(std::vector<std::uint8_t>{});
}

AUComponentIdentity readComponent(const DocumentNode& node) {
    return {
        .componentType = readComponentCode(node.required(key::componentType)),
        .componentSubType = readComponentCode(node.required(key::componentSubType)),
        .componentManufacturer = readComponentCode(node.required(key::componentManufacturer))};
}

void writeComponent(JSONWriter& to, const AUComponentIdentity& component) {
    to.beginObject();
    to.member(key::componentManufacturer, std::int64_t{component.componentManufacturer});
    to.member(key::componentSubType, std::int64_t{component.componentSubType});
    to.member(key::componentType, std::int64_t{component.componentType});
    to.endObject();
}

} // namespace orvane::session
