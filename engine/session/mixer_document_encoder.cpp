#include "engine/session/mixer_document_codec.h"

#include "engine/session/document_keys.h"
#include "engine/session/document_values.h"
#include "engine/session/json_writer.h"
#include "platform/base/base64.h"

#include <utility>
#include <variant>
#include <vector>

namespace orvane::session {

namespace {

/// Spaces per level of indentation.
constexpr std::size_t indentWidth = 4;

void write(JSONWriter& to, const PluginSlot& slot);
void write(JSONWriter& to, const ChannelSettingsData& channel);
void write(JSONWriter& to, const Snapshot& snapshot);

void write(JSONWriter& to, bool truth) {
    to.value(truth);
}

template <class Items>
void writeList(JSONWriter& to, std::string_view key, const Items& items) {
    to.key(key);
    to.beginArray();
    for (const auto& item : items)
        write(to, item);
    to.endArray();
}

void write(JSONWriter& to, const PluginSlot& slot) {
    to.beginObject();
    to.member(key::bypassed, slot.bypassed);
    if (slot.component) {
        to.key(key::component);
        writeComponent(to, *slot.component);
    }
    to.member(key::id, slot.id.toString());
    if (slot.pluginName) to.member(key::pluginName, *slot.pluginName);
    if (slot.presetData) {
        to.key(key::presetData);
        to.plainText(platform::encodeBase64(*slot.presetData));
    }
    to.endObject();
}

void writeMembers(JSONWriter&, output::None) {}

void writeMembers(JSONWriter& to, output::Mono mono) {
    to.member(key::channel, mono.channel);
}

void writeMembers(JSONWriter& to, output::Stereo stereo) {
    to.member(key::left, stereo.left);
    to.member(key::pan, stereo.pan);
    to.member(key::right, stereo.right);
}

void writeMembers(JSONWriter& to, master_output::Stereo stereo) {
    to.member(key::left, stereo.left);
    to.member(key::right, stereo.right);
}

std::string_view caseOf(output::None) {
    return key::none;
}
std::string_view caseOf(output::Mono) {
    return key::mono;
}
std::string_view caseOf(output::Stereo) {
    return key::stereo;
}
std::string_view caseOf(master_output::Stereo) {
    return key::stereo;
}

template <class... Cases>
void writeRouting(JSONWriter& to, std::string_view key, const std::variant<Cases...>& routing) {
    to.key(key);
    to.beginObject();
    std::visit(
        [&to](const auto& chosen) {
            to.key(caseOf(chosen));
            to.beginObject();
            writeMembers(to, chosen);
            to.endObject();
        },
        routing
    );
    to.endObject();
}

void write(JSONWriter& to, const ChannelSettingsData& channel) {
    to.beginObject();
    to.member(key::bypassed, channel.bypassed);
    to.member(key::genderMode, dsp::rawValue(channel.genderMode));
    if (channel.inputChannelIndex) to.member(key::inputChannelIndex, *channel.inputChannelIndex);
    to.member(key::muted, channel.muted);
    to.member(key::name, channel.name);
    writeRouting(to, key::outputRouting, channel.outputRouting);
    writeList(to, key::pluginSlots, channel.pluginSlots);
    to.member(key::trim, channel.trim);
    to.member(key::vocalRole, dsp::rawValue(channel.vocalRole));
    to.endObject();
}

void write(JSONWriter& to, const Snapshot& snapshot) {
    to.beginObject();
    to.member(key::backingGroupGainDB, snapshot.levels.backingGroupGainDB);
    writeList(to, key::channels, snapshot.channels);
    to.member(key::id, snapshot.id.toString());
    to.member(key::leadGroupGainDB, snapshot.levels.leadGroupGainDB);
    to.member(key::masterTargetDB, snapshot.levels.masterTargetDB);
    if (snapshot.midiTrigger) {
        to.key(key::midiTrigger);
        to.beginObject();
        to.member(key::channel, snapshot.midiTrigger->channel);
        to.member(key::note, snapshot.midiTrigger->note);
        to.endObject();
    }
    to.member(key::name, snapshot.name);
    to.endObject();
}

void write(JSONWriter& to, const dsp::OutputOptions& options) {
    to.beginObject();
    to.member(key::fastOnset, options.fastOnset);
    to.member(key::gainRamps, options.gainRamps);
    to.member(key::leveler, dsp::rawValue(options.leveler));
    if (options.limiterCeilingDBTP) to.member(key::limiterCeilingDBTP, *options.limiterCeilingDBTP);
    to.member(key::openMicrophoneLimit, options.openMicrophoneLimit);
    to.endObject();
}

void write(JSONWriter& to, const MixerDocumentData& data) {
    to.beginObject();
    to.member(key::backingGroupGainDB, data.master.levels.backingGroupGainDB);
    to.member(key::bufferSize, data.bufferSize);
    writeList(to, key::channels, data.channels);
    to.member(key::duckerReleaseMs, data.master.duckerReleaseMs);
    to.member(key::leadGroupGainDB, data.master.levels.leadGroupGainDB);
    writeRouting(to, key::masterOutputRouting, data.master.masterOutputRouting);
    to.member(key::masterTargetDB, data.master.levels.masterTargetDB);
    if (data.master.outputOptions != dsp::OutputOptions{}) {
        to.key(key::outputOptions);
        write(to, data.master.outputOptions);
    }
    writeList(to, key::pluginSlotRecallSafe, data.pluginSlotRecallSafe);
    to.member(key::referenceNoiseGain, data.master.referenceNoiseGain);
    writeList(to, key::snapshots, data.snapshots);
    to.endObject();
}

} // namespace

platform::Result<std::string>
encodeMixerDocument(const MixerDocumentData& data, const DocumentLimits& limits) {
    JSONWriter writer(indentWidth);
    write(writer, data);
    if (const auto& path = writer.nonFinite()) return platform::Error{*path + " is not a finite number."};
    if (const auto excess = limits.excess(writer.text().size(), writer.valueCount())) return *excess;
    return std::move(writer.text());
}

} // namespace orvane::session
