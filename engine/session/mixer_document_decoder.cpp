#include "engine/session/mixer_document_codec.h"

#include "engine/session/displayed_text.h"
#include "engine/session/document_keys.h"
#include "engine/session/document_node.h"
#include "engine/session/document_tree.h"
#include "engine/session/document_values.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane::session {

namespace {

std::string quoted(std::string_view word) {
    return '"' + displayed(word) + '"';
}

std::string readString(const DocumentNode& node) {
    return std::string(node.text());
}

std::int64_t readInteger(const DocumentNode& node) {
    return node.integer();
}

template <class Word>
Word readWord(const DocumentNode& node, std::optional<Word> (*fromRawValue)(std::string_view) noexcept) {
    const auto word = fromRawValue(node.text());
    if (!word) node.fail("is the unknown word " + quoted(node.text()));
    return word.value_or(Word{});
}

dsp::GenderTriggerMode readGenderMode(const DocumentNode& node) {
    return readWord(node, dsp::genderTriggerModeFromRawValue);
}

dsp::VocalRole readVocalRole(const DocumentNode& node) {
    return readWord(node, dsp::vocalRoleFromRawValue);
}

/// `readStereo` reads the members of the stereo case, which differs between the routings.
template <class Routing>
Routing readRouting(const DocumentNode& node, Routing (*readStereo)(const DocumentNode& members)) {
    const std::string_view word = node.onlyKey();
    if (word == key::mono) return output::Mono{node.required(word).required(key::channel).integer()};
    if (word == key::stereo) return readStereo(node.required(word));
    if (word == key::none)
        node.required(word).expectObject();
    else
        node.fail("has the unknown case " + quoted(word));
    return output::None{};
}

OutputRouting readStereoOutput(const DocumentNode& members) {
    return output::Stereo{
        .left = members.required(key::left).integer(),
        .right = members.required(key::right).integer(),
        .pan = members.required(key::pan).number()};
}

MasterOutputRouting readStereoMasterOutput(const DocumentNode& members) {
    return master_output::Stereo{
        .left = members.required(key::left).integer(), .right = members.required(key::right).integer()};
}

OutputRouting readOutputRouting(const DocumentNode& node) {
    return readRouting(node, readStereoOutput);
}

MasterOutputRouting readMasterOutputRouting(const DocumentNode& node) {
    return readRouting(node, readStereoMasterOutput);
}

PluginSlot readPluginSlot(const DocumentNode& node) {
    return {
        .id = readUuid(node.required(key::id)),
        .pluginName = node.optional(key::pluginName, readString),
        .component = node.optional(key::component, readComponent),
        .presetData = node.optional(key::presetData, readBytes),
        .bypassed = node.required(key::bypassed).boolean()};
}

std::vector<PluginSlot> readPluginSlots(const DocumentNode& node) {
    return node.list(readPluginSlot);
}

ChannelSettingsData readChannel(const DocumentNode& node) {
    return {
        .name = readString(node.required(key::name)),
        .inputChannelIndex = node.optional(key::inputChannelIndex, readInteger),
        .outputRouting = readOutputRouting(node.required(key::outputRouting)),
        .genderMode = readGenderMode(node.required(key::genderMode)),
        .muted = node.required(key::muted).boolean(),
        .bypassed = node.required(key::bypassed).boolean(),
        .trim = node.required(key::trim).number(),
        .vocalRole = node.optional(key::vocalRole, readVocalRole).value_or(dsp::VocalRole::none),
        .pluginSlots = paddedWithEmptySlots(
            node.optional(key::pluginSlots, readPluginSlots).value_or(std::vector<PluginSlot>{})
        )};
}

MIDITrigger readMIDITrigger(const DocumentNode& node) {
    return {.channel = node.required(key::channel).integer(), .note = node.required(key::note).integer()};
}

double numberOr(double absent, const DocumentNode& node, std::string_view word) {
    return node.optional(word, &DocumentNode::number).value_or(absent);
}

MasterLevels readLevels(const DocumentNode& node) {
    const MasterLevels defaults;
    return {
        .masterTargetDB = node.required(key::masterTargetDB).number(),
        .leadGroupGainDB = numberOr(defaults.leadGroupGainDB, node, key::leadGroupGainDB),
        .backingGroupGainDB = numberOr(defaults.backingGroupGainDB, node, key::backingGroupGainDB)};
}

Snapshot readSnapshot(const DocumentNode& node) {
    return {
        .id = readUuid(node.required(key::id)),
        .name = readString(node.required(key::name)),
        .channels = node.required(key::channels).list(readChannel),
        .levels = readLevels(node),
        .midiTrigger = node.optional(key::midiTrigger, readMIDITrigger)};
}

dsp::LevelerMode readLeveler(const DocumentNode& node) {
    return readWord(node, dsp::levelerModeFromRawValue);
}

double readCeiling(const DocumentNode& node) {
    const double ceiling = node.number();
    if (ceiling < dsp::lowestCeilingDBTP || ceiling > dsp::highestCeilingDBTP)
        node.fail("is not between -20 and 0");
    return ceiling;
}

dsp::OutputOptions readOutputOptions(const DocumentNode& node) {
    const dsp::OutputOptions defaults;
    return {
        .leveler = node.optional(key::leveler, readLeveler).value_or(defaults.leveler),
        .gainRamps = node.optional(key::gainRamps, &DocumentNode::boolean).value_or(defaults.gainRamps),
        .openMicrophoneLimit = node.optional(key::openMicrophoneLimit, &DocumentNode::boolean)
                                   .value_or(defaults.openMicrophoneLimit),
        .fastOnset = node.optional(key::fastOnset, &DocumentNode::boolean).value_or(defaults.fastOnset),
        .limiterCeilingDBTP = node.optional(key::limiterCeilingDBTP, readCeiling)};
}

MasterSettings readMaster(const DocumentNode& node) {
    const MasterSettings defaults;
    return {
        .levels = readLevels(node),
        .referenceNoiseGain = numberOr(defaults.referenceNoiseGain, node, key::referenceNoiseGain),
        .duckerReleaseMs = numberOr(defaults.duckerReleaseMs, node, key::duckerReleaseMs),
        .masterOutputRouting = node.optional(key::masterOutputRouting, readMasterOutputRouting)
                                   .value_or(defaults.masterOutputRouting),
        .outputOptions =
            node.optional(key::outputOptions, readOutputOptions).value_or(defaults.outputOptions)};
}

std::vector<bool> readFlags(const DocumentNode& node) {
    return node.list(&DocumentNode::boolean);
}

MixerDocumentData readDocument(const DocumentNode& node) {
    const MixerDocumentData defaults;
    return {
        .channels = node.required(key::channels).list(readChannel),
        .master = readMaster(node),
        .bufferSize = node.required(key::bufferSize).integer(),
        .snapshots = node.required(key::snapshots).list(readSnapshot),
        .pluginSlotRecallSafe =
            node.optional(key::pluginSlotRecallSafe, readFlags).value_or(defaults.pluginSlotRecallSafe)};
}

} // namespace

platform::Result<MixerDocumentData> decodeMixerDocument(std::string_view text, const DocumentLimits& limits) {
    const auto tree = parseDocumentTree(text, key::isKnown, limits);
    if (!tree) return tree.error();
    std::optional<platform::Error> fault;
    auto data = readDocument(DocumentNode(tree.value().root, fault));
    if (fault) return *fault;
    return data;
}

} // namespace orvane::session
