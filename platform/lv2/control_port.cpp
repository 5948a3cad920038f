#include "platform/lv2/control_port.h"

#include <lv2/core/lv2.h>
#include <lv2/port-groups/port-groups.h>
#include <lv2/port-props/port-props.h>
#include <lv2/units/units.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

constexpr const char* labelUri = "http://www.w3.org/2000/01/rdf-schema#label";

/// The usual symbols of the units that LV2 defines.
constexpr std::pair<std::string_view, std::string_view> unitSymbols[] = {
    {LV2_UNITS__bar, "bars"},      {LV2_UNITS__beat, "beats"}, {LV2_UNITS__bpm, "BPM"},
    {LV2_UNITS__cent, "ct"},       {LV2_UNITS__cm, "cm"},      {LV2_UNITS__coef, ""},
    {LV2_UNITS__db, "dB"},         {LV2_UNITS__degree, "°"},   {LV2_UNITS__frame, "frames"},
    {LV2_UNITS__hz, "Hz"},         {LV2_UNITS__inch, "in"},    {LV2_UNITS__khz, "kHz"},
    {LV2_UNITS__km, "km"},         {LV2_UNITS__m, "m"},        {LV2_UNITS__mhz, "MHz"},
    {LV2_UNITS__midiNote, "note"}, {LV2_UNITS__mile, "mi"},    {LV2_UNITS__min, "min"},
    {LV2_UNITS__mm, "mm"},         {LV2_UNITS__ms, "ms"},      {LV2_UNITS__oct, "oct"},
    {LV2_UNITS__pc, "%"},          {LV2_UNITS__s, "s"},        {LV2_UNITS__semitone12TET, "semi"}};

std::optional<float> numberOf(const LilvNode* node) {
    if (node == nullptr || (!lilv_node_is_float(node) && !lilv_node_is_int(node))) return std::nullopt;
    const float number = lilv_node_as_float(node);
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::string unitName(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port) {
    const NodeHandle unit(lilv_port_get(plugin, port, bundle.node(LV2_UNITS__unit)));
    if (!unit) return {};
    if (lilv_node_is_uri(unit.get())) {
        const std::string_view uri = lilv_node_as_uri(unit.get());
        const auto* const known =
            std::ranges::find(unitSymbols, uri, &std::pair<std::string_view, std::string_view>::first);
        if (known != std::ranges::end(unitSymbols)) return std::string(known->second);
    }
    return bundle.text(unit.get(), LV2_UNITS__symbol);
}

std::string groupName(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port) {
    const NodeHandle group(lilv_port_get(plugin, port, bundle.node(LV2_PORT_GROUPS__group)));
    if (!group) return {};
    for (const char* predicate : {LV2_CORE__name, labelUri, LV2_CORE__symbol})
        if (std::string name = bundle.text(group.get(), predicate); !name.empty()) return name;
    return {};
}

std::vector<AUParameterInfo::NamedValue> namedValues(const LilvPlugin* plugin, const LilvPort* port) {
    std::vector<AUParameterInfo::NamedValue> values;
    const ScalePointsHandle points(lilv_port_get_scale_points(plugin, port));
    LILV_FOREACH(scale_points, i, points.get()) {
        const LilvScalePoint* const point = lilv_scale_points_get(points.get(), i);
        if (const auto value = numberOf(lilv_scale_point_get_value(point)))
            values.push_back({*value, textOf(lilv_scale_point_get_label(point))});
    }
    std::ranges::stable_sort(values, {}, &AUParameterInfo::NamedValue::value);
    return values;
}

void describeRange(const LilvPlugin* plugin, const LilvPort* port, AUParameterInfo& info) {
    LilvNode* ends[3] = {};
    lilv_port_get_range(plugin, port, &ends[0], &ends[1], &ends[2]);
    const NodeHandle standard(ends[0]);
    const NodeHandle lowest(ends[1]);
    const NodeHandle highest(ends[2]);
    info.minValue = numberOf(lowest.get()).value_or(0.0F);
    info.maxValue = numberOf(highest.get()).value_or(std::max(1.0F, info.minValue));
    if (info.minValue > info.maxValue) std::swap(info.minValue, info.maxValue);
    info.defaultValue =
        std::clamp(numberOf(standard.get()).value_or(info.minValue), info.minValue, info.maxValue);
}

AUParameterInfo::Kind
kindOf(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port, bool hasNames) {
    const auto has = [&](const char* property) {
        return lilv_port_has_property(plugin, port, bundle.node(property));
    };
    if (has(LV2_CORE__toggled)) return AUParameterInfo::Kind::toggle;
    if (has(LV2_CORE__enumeration) && hasNames) return AUParameterInfo::Kind::choice;
    if (has(LV2_CORE__integer) || has(LV2_CORE__enumeration)) return AUParameterInfo::Kind::integer;
    return AUParameterInfo::Kind::continuous;
}

bool isDesignated(
    PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port, const char* designation
) {
    const NodeHandle found(lilv_port_get(plugin, port, bundle.node(LV2_CORE__designation)));
    return found != nullptr && lilv_node_equals(found.get(), bundle.node(designation));
}

} // namespace

std::optional<float> heldValue(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port) {
    if (!lilv_port_is_a(plugin, port, bundle.node(LV2_CORE__InputPort))) return std::nullopt;
    if (isDesignated(bundle, plugin, port, LV2_CORE__enabled)) return 1.0F;
    if (isFreeWheeling(bundle, plugin, port)) return 0.0F;
    return std::nullopt;
}

bool isFreeWheeling(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port) {
    return isDesignated(bundle, plugin, port, LV2_CORE__freeWheeling);
}

bool reportsLatency(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port) {
    return lilv_port_is_a(plugin, port, bundle.node(LV2_CORE__OutputPort))
           && (isDesignated(bundle, plugin, port, LV2_CORE__latency)
               || lilv_port_has_property(plugin, port, bundle.node(LV2_CORE__reportsLatency)));
}

ControlPort describeControl(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port) {
    const auto has = [&](const char* property) {
        return lilv_port_has_property(plugin, port, bundle.node(property));
    };
    ControlPort control;
    control.index = lilv_port_get_index(plugin, port);
    control.scalesWithSampleRate = has(LV2_CORE__sampleRate);
    control.isTrigger = has(LV2_PORT_PROPS__trigger);

    AUParameterInfo& info = control.info;
    info.identifier = textOf(lilv_port_get_symbol(plugin, port));
    info.displayName = textOf(NodeHandle(lilv_port_get_name(plugin, port)).get());
    info.unitName = unitName(bundle, plugin, port);
    info.group = groupName(bundle, plugin, port);
    describeRange(plugin, port, info);
    info.namedValues = namedValues(plugin, port);
    info.kind = kindOf(bundle, plugin, port, !info.namedValues.empty());
    info.isLogarithmic = has(LV2_PORT_PROPS__logarithmic) && info.minValue * info.maxValue > 0.0F;
    const auto steps = bundle.integer(lilv_port_get_node(plugin, port), LV2_PORT_PROPS__rangeSteps);
    info.stepCount = std::max(steps.value_or(0), 0);
    info.isReadOnly = lilv_port_is_a(plugin, port, bundle.node(LV2_CORE__OutputPort));
    info.isHidden = has(LV2_PORT_PROPS__notOnGUI) || reportsLatency(bundle, plugin, port);
    return control;
}

} // namespace orvane::platform::lv2
