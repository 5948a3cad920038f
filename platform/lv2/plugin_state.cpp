#include "platform/lv2/plugin_state.h"

#include "platform/lv2/shared_library.h"
#include "platform/lv2/state_value.h"

#include <lv2/atom/atom.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

namespace orvane::platform::lv2 {

namespace {

struct Saving {
    UridMap& urids;
    PropertyList::Dictionary saved = {};
};

struct Restoring {
    UridMap& urids;
    const PropertyList::Dictionary& state;
    StatePaths& paths;
    LV2_URID pathType = urids.map(LV2_ATOM__Path);
    /// The values passed to the plugin, valid until its restore() returns.
    std::vector<StateValue> given = {};
};

LV2_State_Status store(
    LV2_State_Handle handle, std::uint32_t key, const void* value, std::size_t size, std::uint32_t type,
    std::uint32_t flags
) try {
    auto& saving = *static_cast<Saving*>(handle);
    const char* const uri = saving.urids.unmap(key);
    if (uri == nullptr || value == nullptr) return LV2_STATE_ERR_UNKNOWN;
    if ((flags & LV2_STATE_IS_POD) == 0) return LV2_STATE_ERR_BAD_FLAGS;
    const auto* const bytes = static_cast<const std::byte*>(value);
    auto encoded = encode({type, flags, {bytes, bytes + size}}, saving.urids);
    if (!encoded) return LV2_STATE_ERR_BAD_TYPE;
    saving.saved[uri].value = *std::move(encoded);
    return LV2_STATE_SUCCESS;
} catch (const std::bad_alloc&) {
    return LV2_STATE_ERR_NO_SPACE;
}

const void* retrieve(
    LV2_State_Handle handle, std::uint32_t key, std::size_t* size, std::uint32_t* type, std::uint32_t* flags
) try {
    auto& restoring = *static_cast<Restoring*>(handle);
    const char* const uri = restoring.urids.unmap(key);
    if (uri == nullptr) return nullptr;
    const auto found = restoring.state.find(uri);
    if (found == restoring.state.end()) return nullptr;
    // Decodes only what the plugin asks for: a forged session cannot exhaust the URIDs.
    auto decoded = decode(found->second, restoring.urids);
    if (!decoded) return nullptr;
    if (decoded->type == restoring.pathType
        && !restoring.paths.permits(reinterpret_cast<const char*>(decoded->body.data())))
        return nullptr;
    const StateValue& value = restoring.given.emplace_back(*std::move(decoded));
    if (size != nullptr) *size = value.body.size();
    if (type != nullptr) *type = value.type;
    if (flags != nullptr) *flags = value.flags;
    return value.body.data();
} catch (const std::bad_alloc&) {
    return nullptr;
}

} // namespace

SavedState savePluginState(
    const LV2_State_Interface& interface, LV2_Handle handle, UridMap& urids,
    const LV2_Feature* const* features
) {
    Saving saving{urids};
    LV2_State_Status status = LV2_STATE_ERR_UNKNOWN;
    callPlugin([&] {
        status = interface.save(handle, store, &saving, LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE, features);
    });
    return {std::move(saving.saved), status == LV2_STATE_SUCCESS};
}

bool restorePluginState(
    const LV2_State_Interface& interface, LV2_Handle handle, UridMap& urids,
    const LV2_Feature* const* features, const PropertyList::Dictionary& state, StatePaths& paths
) {
    Restoring restoring{urids, state, paths};
    LV2_State_Status status = LV2_STATE_ERR_UNKNOWN;
    callPlugin([&] { status = interface.restore(handle, retrieve, &restoring, 0, features); });
    return status == LV2_STATE_SUCCESS;
}

} // namespace orvane::platform::lv2
