#include "platform/lv2/plugin_description.h"

#include "platform/lv2/control_port.h"

#include <fmt/format.h>
#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/port-groups/port-groups.h>
#include <lv2/resize-port/resize-port.h>
#include <lv2/state/state.h>

#include <algorithm>
#include <set>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

/// The buffer size of an atom port whose plugin asks for less, in bytes.
constexpr std::size_t smallestAtomBuffer = 8192;
/// The limit for atom port buffers, whatever the description asks for.
constexpr std::size_t largestAtomBuffer = std::size_t{16} << 20;

/// Adds the properties of audio ports.
void describeAudio(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port, PortRole& role) {
    const NodeHandle group(lilv_port_get(plugin, port, bundle.node(LV2_PORT_GROUPS__group)));
    role.group = textOf(group.get());
    role.isSideChain =
        lilv_port_has_property(plugin, port, bundle.node(LV2_CORE_PREFIX "isSideChain"))
        || (group != nullptr && !bundle.uris(group.get(), LV2_PORT_GROUPS__sideChainOf).empty());
}

PortKind kindOf(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port) {
    const std::pair<const char*, PortKind> kinds[] = {
        {LV2_CORE__ControlPort, PortKind::control},
        {LV2_CORE__AudioPort, PortKind::audio},
        {LV2_CORE__CVPort, PortKind::cv},
        {LV2_ATOM__AtomPort, PortKind::atom}};
    for (const auto& [uri, kind] : kinds)
        if (lilv_port_is_a(plugin, port, bundle.node(uri))) return kind;
    return PortKind::unknown;
}

std::size_t atomBufferSize(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port) {
    const auto asked = bundle.integer(lilv_port_get_node(plugin, port), LV2_RESIZE_PORT__minimumSize);
    return std::clamp(
        static_cast<std::size_t>(std::max(asked.value_or(0), 0)), smallestAtomBuffer, largestAtomBuffer
    );
}

} // namespace

std::optional<std::uint32_t> MainAudioPorts::channelCount() const {
    const auto [fewest, most] = std::minmax({inputs.size(), outputs.size()});
    if (fewest < 1 || most > 2) return std::nullopt;
    return static_cast<std::uint32_t>(most);
}

Result<std::vector<PortRole>> portRoles(PluginBundle& bundle, const LilvPlugin* plugin) {
    const std::uint32_t count = lilv_plugin_get_num_ports(plugin);
    if (count == 0) return Error{"its ports cannot be read"};
    std::vector<PortRole> roles(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const LilvPort* const port = lilv_plugin_get_port_by_index(plugin, i);
        if (port == nullptr) return Error{fmt::format("it has no port number {}", i)};
        const bool isInput = lilv_port_is_a(plugin, port, bundle.node(LV2_CORE__InputPort));
        if (isInput == lilv_port_is_a(plugin, port, bundle.node(LV2_CORE__OutputPort)))
            return Error{fmt::format("its port number {} is neither an input nor an output", i)};
        roles[i].symbol = textOf(lilv_port_get_symbol(plugin, port));
        roles[i].isInput = isInput;
        roles[i].kind = kindOf(bundle, plugin, port);
        roles[i].isOptional = lilv_port_has_property(plugin, port, bundle.node(LV2_CORE__connectionOptional));
        if (roles[i].kind == PortKind::audio) describeAudio(bundle, plugin, port, roles[i]);
    }
    return roles;
}

MainAudioPorts mainAudioPorts(const std::vector<PortRole>& roles) {
    const auto ofDirection = [&](bool isInput) {
        const auto carriesSignal = [&](const PortRole& role) {
            return role.kind == PortKind::audio && role.isInput == isInput && !role.isSideChain;
        };
        std::set<std::string> neededGroups;
        bool isAnyNeeded = false;
        for (const PortRole& role : roles) {
            if (!carriesSignal(role) || role.isOptional) continue;
            isAnyNeeded = true;
            if (!role.group.empty()) neededGroups.insert(role.group);
        }
        std::vector<std::uint32_t> ports;
        for (std::uint32_t i = 0; i < roles.size(); ++i)
            if (carriesSignal(roles[i])
                && (!isAnyNeeded || !roles[i].isOptional || neededGroups.contains(roles[i].group)))
                ports.push_back(i);
        return ports;
    };
    return {ofDirection(true), ofDirection(false)};
}

Result<PluginDescription> describe(PluginBundle& bundle, const LilvPlugin* plugin) {
    const LilvNode* const uri = lilv_plugin_get_uri(plugin);
    PluginDescription description;
    description.uri = textOf(uri);
    description.name = textOf(NodeHandle(lilv_plugin_get_name(plugin)).get());
    description.bundlePath = pathOf(lilv_plugin_get_bundle_uri(plugin));
    description.libraryPath = pathOf(lilv_plugin_get_library_uri(plugin));
    description.requiredFeatures = bundle.uris(uri, LV2_CORE__requiredFeature);
    description.requiredOptions = bundle.uris(uri, LV2_OPTIONS__requiredOption);
    description.restoresWhileRunning =
        lilv_plugin_has_feature(plugin, bundle.node(LV2_STATE__threadSafeRestore));

    auto roles = portRoles(bundle, plugin);
    if (!roles)
        return Error{fmt::format("\"{}\" cannot be used: {}.", description.name, roles.error().description)};
    description.roles = std::move(roles).value();
    description.audio = mainAudioPorts(description.roles);
    for (std::uint32_t i = 0; i < description.roles.size(); ++i) {
        const LilvPort* const port = lilv_plugin_get_port_by_index(plugin, i);
        const PortKind kind = description.roles[i].kind;
        description.bufferSizes.push_back(kind == PortKind::atom ? atomBufferSize(bundle, plugin, port) : 0);
        const std::optional<float> held = heldValue(bundle, plugin, port);
        description.heldValues.push_back(held.value_or(0.0F));
        if (held && isFreeWheeling(bundle, plugin, port)) description.freeWheelingPorts.push_back(i);
        if (kind != PortKind::control || held) continue;
        description.controls.push_back(describeControl(bundle, plugin, port));
        if (reportsLatency(bundle, plugin, port)) description.latencyPort = i;
    }
    description.editor = describeEditor(bundle, plugin);
    return description;
}

} // namespace orvane::platform::lv2
