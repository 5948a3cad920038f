#include "engine/session/au_component_identity.h"

namespace {
// 2^64 divided by the golden ratio: spreads similar codes over the whole range.
constexpr std::uint64_t spread = 0x9E3779B97F4A7C15;
} // namespace

std::size_t std::hash<orvane::session::AUComponentIdentity>::operator()(
    const orvane::session::AUComponentIdentity& identity
) const noexcept {
    std::uint64_t mixed = identity.componentType;
    mixed = mixed * spread + identity.componentSubType;
    mixed = mixed * spread + identity.componentManufacturer;
    return static_cast<std::size_t>(mixed * spread);
}
