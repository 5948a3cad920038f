#include "platform/lv2/factory_presets.h"

#include "platform/lv2/full_state.h"
#include "platform/lv2/plugin_bundle.h"
#include "platform/lv2/state_value.h"
#include "platform/lv2/urid_map.h"

#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/presets/presets.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

constexpr const char* labelUri = LILV_NS_RDFS "label";

using StateHandle = std::unique_ptr<LilvState, LilvFree<lilv_state_free>>;

/// What `takeProperties` collects from a preset.
struct Reading {
    std::filesystem::path folder;
    UridMap urids = {};
    PropertyList::Dictionary controls = {};
    PropertyList::Dictionary state = {};
};

LV2_URID mapUri(LV2_URID_Map_Handle urids, const char* uri) {
    return static_cast<UridMap*>(urids)->map(uri);
}

template <class T>
std::optional<double> numberAs(const void* value, std::uint32_t size) {
    if (size != sizeof(T)) return std::nullopt;
    T number;
    std::memcpy(&number, value, sizeof number);
    return static_cast<double>(number);
}

std::optional<double> numberOf(const void* value, std::uint32_t size, std::string_view type) {
    if (type == LV2_ATOM__Float) return numberAs<float>(value, size);
    if (type == LV2_ATOM__Double) return numberAs<double>(value, size);
    if (type == LV2_ATOM__Int || type == LV2_ATOM__Bool) return numberAs<std::int32_t>(value, size);
    if (type == LV2_ATOM__Long) return numberAs<std::int64_t>(value, size);
    return std::nullopt;
}

void takeControl(
    const char* symbol, void* handle, const void* value, std::uint32_t size, std::uint32_t type
) {
    auto& reading = *static_cast<Reading*>(handle);
    const char* const typeUri = reading.urids.unmap(type);
    if (typeUri == nullptr) return;
    if (const auto number = numberOf(value, size, typeUri)) reading.controls[symbol].value = *number;
}

/// Makes a path absolute; a preset's paths may be relative to its bundle.
std::vector<std::byte> absolutePath(const std::filesystem::path& folder, std::span<const std::byte> body) {
    const auto* const text = reinterpret_cast<const char*>(body.data());
    const std::string path = folder / std::string(text, ::strnlen(text, body.size()));
    const auto bytes = std::as_bytes(std::span(path.c_str(), path.size() + 1));
    return {bytes.begin(), bytes.end()};
}

/// Stands in for a plugin's restore(). A state cannot list its keys, but they are among the URIs that were
/// mapped while it was created.
LV2_State_Status
takeProperties(LV2_Handle handle, LV2_State_Retrieve_Function retrieve, LV2_State_Handle state, std::uint32_t, const LV2_Feature* const*) {
    auto& reading = *static_cast<Reading*>(handle);
    const LV2_URID pathType = reading.urids.map(LV2_ATOM__Path);
    for (LV2_URID key = 1; reading.urids.unmap(key) != nullptr; ++key) {
        std::size_t size = 0;
        StateValue value;
        const auto* const body =
            static_cast<const std::byte*>(retrieve(state, key, &size, &value.type, &value.flags));
        if (body == nullptr) continue;
        value.body.assign(body, body + size);
        if (value.type == pathType) value.body = absolutePath(reading.folder, value.body);
        if (auto encoded = encode(value, reading.urids))
            reading.state[reading.urids.unmap(key)].value = *std::move(encoded);
    }
    return LV2_STATE_SUCCESS;
}

const void* extensionOfReader(const char* uri) {
    static constexpr LV2_State_Interface interface { .save = nullptr, .restore = takeProperties };
    return std::strcmp(uri, LV2_STATE__interface) == 0 ? &interface : nullptr;
}

} // namespace

std::vector<InstalledPreset> presetsIn(PluginBundle& bundle, const std::filesystem::path& folder) {
    LilvWorld* const world = bundle.lilvWorld();
    std::vector<InstalledPreset> presets;
    const NodesHandle declared(lilv_world_find_nodes(
        world, nullptr, bundle.node(LILV_NS_RDF "type"), bundle.node(LV2_PRESETS__Preset)
    ));
    LILV_FOREACH(nodes, i, declared.get()) {
        const LilvNode* const preset = lilv_nodes_get(declared.get(), i);
        if (!lilv_node_is_uri(preset)) continue;
        lilv_world_load_resource(world, preset);
        const std::string name = bundle.text(preset, labelUri);
        if (name.empty()) continue;
        const NodeHandle bank(lilv_world_get(world, preset, bundle.node(LV2_PRESETS__bank), nullptr));
        const std::string bankName = bank ? bundle.text(bank.get(), labelUri) : std::string();
        for (std::string& plugin : bundle.uris(preset, LV2_CORE__appliesTo))
            presets.push_back({textOf(preset), name, bankName, std::move(plugin), folder});
    }
    return presets;
}

std::optional<PropertyList::Dictionary>
readPreset(const std::filesystem::path& folder, const std::string& presetUri, const std::string& pluginUri) {
    PluginBundle bundle(folder);
    const LilvNode* const preset = bundle.node(presetUri);
    lilv_world_load_resource(bundle.lilvWorld(), preset);
    Reading reading{.folder = folder};
    LV2_URID_Map map{&reading.urids, mapUri};
    const StateHandle state(lilv_state_new_from_world(bundle.lilvWorld(), &map, preset));
    if (!state) return std::nullopt;
    LV2_Descriptor reader{};
    reader.extension_data = extensionOfReader;
    LilvInstance instance{.lv2_descriptor = &reader, .lv2_handle = &reading, .pimpl = nullptr};
    lilv_state_restore(state.get(), &instance, takeControl, &reading, 0, nullptr);
    return makeFullState(pluginUri, std::move(reading.controls), std::move(reading.state));
}

} // namespace orvane::platform::lv2
