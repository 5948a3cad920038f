#include "engine/session/mixer_document_encoder.h"

#include "engine/session/document_keys.h"
#include "engine/session/document_limits.h"
#include "engine/session/document_values.h"
#include "platform/base64.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <optional>
#include <variant>
#include <vector>

namespace orvane::session {

namespace {

using nlohmann::json;

json written(const ChannelSettingsData& channel);
json written(const Snapshot& snapshot);

json written(const PluginSlot& slot) {
    json object;
    object[key::id] = slot.id.toString();
    if (slot.pluginName) object[key::pluginName] = *slot.pluginName;
    if (slot.component) object[key::component] = written(*slot.component);
    if (slot.presetData) object[key::presetData] = platform::encodeBase64(*slot.presetData);
    object[key::bypassed] = slot.bypassed;
    return object;
}

json written(output::None) {
    json object;
    object[key::none] = json::object();
    return object;
}

json written(output::Mono mono) {
    json object;
    object[key::mono][key::channel] = mono.channel;
    return object;
}

json written(output::Stereo stereo) {
    json object;
    object[key::stereo][key::left] = stereo.left;
    object[key::stereo][key::right] = stereo.right;
    object[key::stereo][key::pan] = stereo.pan;
    return object;
}

json written(master_output::Stereo stereo) {
    json object;
    object[key::stereo][key::left] = stereo.left;
    object[key::stereo][key::right] = stereo.right;
    return object;
}

template <class... Cases>
json written(const std::variant<Cases...>& routing) {
    return std::visit([](const auto& chosen) { return written(chosen); }, routing);
}

template <class Item>
json written(const std::vector<Item>& items) {
    json array = json::array();
    for (const Item& item : items)
        array.push_back(written(item));
    return array;
}

json written(const ChannelSettingsData& channel) {
    json object;
    object[key::name] = channel.name;
    if (channel.inputChannelIndex) object[key::inputChannelIndex] = *channel.inputChannelIndex;
    object[key::outputRouting] = written(channel.outputRouting);
    object[key::genderMode] = dsp::rawValue(channel.genderMode);
    object[key::muted] = channel.muted;
    object[key::bypassed] = channel.bypassed;
    object[key::trim] = channel.trim;
    object[key::vocalRole] = dsp::rawValue(channel.vocalRole);
    object[key::pluginSlots] = written(channel.pluginSlots);
    return object;
}

json written(const MIDITrigger& trigger) {
    json object;
    object[key::channel] = trigger.channel;
    object[key::note] = trigger.note;
    return object;
}

json written(const Snapshot& snapshot) {
    json object;
    object[key::id] = snapshot.id.toString();
    object[key::name] = snapshot.name;
    object[key::channels] = written(snapshot.channels);
    object[key::masterTargetDB] = snapshot.masterTargetDB;
    object[key::leadGroupGainDB] = snapshot.leadGroupGainDB;
    object[key::backingGroupGainDB] = snapshot.backingGroupGainDB;
    if (snapshot.midiTrigger) object[key::midiTrigger] = written(*snapshot.midiTrigger);
    return object;
}

json written(const MixerDocumentData& data) {
    json object;
    object[key::channels] = written(data.channels);
    object[key::masterTargetDB] = data.masterTargetDB;
    object[key::bufferSize] = data.bufferSize;
    object[key::snapshots] = written(data.snapshots);
    object[key::masterOutputRouting] = written(data.masterOutputRouting);
    object[key::leadGroupGainDB] = data.leadGroupGainDB;
    object[key::backingGroupGainDB] = data.backingGroupGainDB;
    object[key::pluginSlotRecallSafe] = data.pluginSlotRecallSafe;
    object[key::referenceNoiseGain] = data.referenceNoiseGain;
    object[key::duckerReleaseMs] = data.duckerReleaseMs;
    return object;
}

/// The path within `value` of a number that JSON has no form for; nothing where all are finite.
std::optional<std::string> pathOfNonFinite(const json& value) {
    if (value.is_number_float() && !std::isfinite(value.get<double>())) return std::string();
    for (std::size_t index = 0; value.is_array() && index < value.size(); ++index)
        if (const auto rest = pathOfNonFinite(value[index])) return '[' + std::to_string(index) + ']' + *rest;
    if (!value.is_object()) return std::nullopt;
    for (const auto& [word, member] : value.items())
        if (const auto rest = pathOfNonFinite(member)) return '.' + word + *rest;
    return std::nullopt;
}

} // namespace

platform::Result<std::string> encodeMixerDocument(const MixerDocumentData& data) {
    const json document = written(data);
    if (const auto path = pathOfNonFinite(document))
        return platform::Error{path->substr(1) + " is not a finite number."};
    std::string text = document.dump(indentWidth, ' ', false, json::error_handler_t::replace);
    if (text.size() > maximumDocumentSize) return platform::Error{std::string(documentTooLarge)};
    return text;
}

} // namespace orvane::session
