#include "engine/session/mixer_document_codec.h"
#include "support/description_of.h"
#include "support/random_document.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <set>

namespace {

using namespace orvane::session;
using namespace orvane::test;
using nlohmann::json;
using orvane::platform::Uuid;

/// Decodes a text; if that fails, reports a test failure and returns an empty session.
MixerDocumentData decoded(std::string_view text) {
    const auto data = decodeMixerDocument(text);
    EXPECT_EQ(descriptionOf(data), "success") << text;
    return data ? data.value() : MixerDocumentData{};
}

std::string encoded(const MixerDocumentData& data) {
    return encodeMixerDocument(data).value();
}

TEST(MixerDocumentCodec, DecodesEveryEncodedSession) {
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        const MixerDocumentData data = randomDocument(seed);
        const std::string text = encoded(data);
        EXPECT_EQ(decoded(text), data) << "seed " << seed << '\n' << text;
    }
}

TEST(MixerDocumentCodec, WritesTheAgreedFormWithKeysInOrder) {
    const Uuid id = *Uuid::parse("0a1b2c3d-0000-4000-8000-000000000001");
    const AUComponentIdentity component{1635083896, 2, 4294967295};
    const PluginSlot slot{id, "Comp", component, std::vector<std::uint8_t>{0, 255}, true};
    const PluginSlot empty{id, {}, {}, {}, false};
    const auto female = orvane::dsp::GenderTriggerMode::female;
    const auto backing = orvane::dsp::VocalRole::backing;
    MixerDocumentData data;
    data.channels = {
        {"Vox", 3, output::Stereo{2, 3, -0.5}, female, true, false, 0.1, backing, {slot, empty}},
        {"Spare", {}, output::Mono{7}, {}, false, false, 1.0, {}, {}}};
    data.bufferSize = 128;
    data.snapshots = {{id, "Scene", {}, -20.5, 1, 2, MIDITrigger{15, 127}}, {{}, "Other", {}, 0, 0, 0, {}}};
    data.master.masterOutputRouting = master_output::Stereo{0, 1};
    const auto expected = json::parse(R"({
        "backingGroupGainDB": 0.0, "bufferSize": 128, "duckerReleaseMs": 400.0, "leadGroupGainDB": 0.0,
        "masterOutputRouting": {"stereo": {"left": 0, "right": 1}}, "masterTargetDB": -10.0,
        "pluginSlotRecallSafe": [false, false, false], "referenceNoiseGain": 0.0,
        "channels": [
            {"name": "Vox", "inputChannelIndex": 3, "genderMode": "female", "muted": true, "bypassed": false,
             "outputRouting": {"stereo": {"left": 2, "pan": -0.5, "right": 3}}, "trim": 0.1,
             "vocalRole": "backing", "pluginSlots": [
                {"id": "0A1B2C3D-0000-4000-8000-000000000001", "pluginName": "Comp", "bypassed": true,
                 "component": {"componentType": 1635083896, "componentSubType": 2,
                               "componentManufacturer": 4294967295}, "presetData": "AP8="},
                {"id": "0A1B2C3D-0000-4000-8000-000000000001", "bypassed": false}]},
            {"name": "Spare", "genderMode": "neutral", "muted": false, "bypassed": false, "trim": 1.0,
             "outputRouting": {"mono": {"channel": 7}}, "vocalRole": "none", "pluginSlots": []}],
        "snapshots": [
            {"id": "0A1B2C3D-0000-4000-8000-000000000001", "name": "Scene", "channels": [],
             "masterTargetDB": -20.5, "leadGroupGainDB": 1.0, "backingGroupGainDB": 2.0,
             "midiTrigger": {"channel": 15, "note": 127}},
            {"id": "00000000-0000-0000-0000-000000000000", "name": "Other", "channels": [],
             "masterTargetDB": 0.0, "leadGroupGainDB": 0.0, "backingGroupGainDB": 0.0}]})");
    EXPECT_EQ(encoded(data), expected.dump(4));
    EXPECT_EQ(decoded(expected.dump()).channels.at(0).genderMode, female);
    EXPECT_EQ(decoded(expected.dump()).channels.at(0).vocalRole, backing);
}

/// Replaces some keys of a text.
template <class Instead>
std::string rewritten(std::string text, const std::vector<std::string>& keys, const Instead& instead) {
    for (const std::string& word : keys) {
        const std::string key = '"' + word + "\":";
        const std::string piece = instead(key);
        for (auto at = text.find(key); at != std::string::npos; at = text.find(key, at + piece.size()))
            text.replace(at, key.size(), piece);
    }
    return text;
}

std::string lost(const std::string& key) {
    return "\"lost " + key.substr(1);
}

std::string nullAndLost(const std::string& key) {
    return key + "null," + lost(key);
}

/// Resets the settings that older files lack.
void resetOptional(std::vector<ChannelSettingsData>& channels) {
    for (ChannelSettingsData& channel : channels) {
        channel.inputChannelIndex.reset();
        channel.vocalRole = orvane::dsp::VocalRole::none;
        for (PluginSlot& slot : channel.pluginSlots)
            slot = {slot.id, {}, {}, {}, slot.bypassed};
    }
}

TEST(MixerDocumentCodec, MissingAndNullSettingsTakeTheirDefaults) {
    const std::vector<std::string> keys = {"masterOutputRouting",  "leadGroupGainDB",    "backingGroupGainDB",
                                           "pluginSlotRecallSafe", "referenceNoiseGain", "duckerReleaseMs",
                                           "midiTrigger",          "inputChannelIndex",  "vocalRole",
                                           "pluginName",           "component",          "presetData",
                                           "outputOptions"};
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        const MixerDocumentData whole = randomDocument(seed);
        const double targetDB = whole.master.levels.masterTargetDB;
        MixerDocumentData expected{
            whole.channels, {{.masterTargetDB = targetDB}}, whole.bufferSize, whole.snapshots};
        resetOptional(expected.channels);
        for (Snapshot& snapshot : expected.snapshots) {
            std::vector channels(snapshot.channels.begin(), snapshot.channels.end());
            resetOptional(channels);
            snapshot = {snapshot.id, snapshot.name, channels, {snapshot.levels.masterTargetDB, 0, 0}, {}};
        }
        for (const auto instead : {lost, nullAndLost})
            EXPECT_EQ(decoded(rewritten(encoded(whole), keys, instead)), expected) << "seed " << seed;
    }
}

TEST(MixerDocumentCodec, PadsEveryChannelToFiveSlotsAndKeepsLongerLists) {
    MixerDocumentData data;
    data.channels.resize(1);
    for (const auto instead : {lost, nullAndLost}) {
        const std::string text = rewritten(encoded(data), {"pluginSlots"}, instead);
        EXPECT_EQ(decoded(text).channels[0].pluginSlots.size(), 5U) << text;
    }
    for (std::size_t count = 0; count < 8; ++count) {
        const auto found = decoded(encoded(data)).channels[0].pluginSlots;
        ASSERT_EQ(found.size(), std::max<std::size_t>(count, 5));
        std::set<Uuid> ids;
        for (std::size_t index = 0; index < found.size(); ++index) {
            const bool isLoaded = index < count;
            EXPECT_EQ(found[index].bypassed, isLoaded) << "slot " << index << " of " << count;
            EXPECT_TRUE(!isLoaded || found[index] == data.channels[0].pluginSlots[index]) << index;
            ids.insert(found[index].id);
        }
        EXPECT_EQ(ids.size(), found.size());
        data.channels[0].pluginSlots.push_back({Uuid::random(), {}, {}, {}, true});
    }
}

TEST(MixerDocumentCodec, IgnoresUnknownKeysWithAnyValue) {
    const auto withForeign = [](const std::string& key) {
        return R"("future": {"name": 7, "list": [1, "two", null, {"Id": []}], "muted": 1, "muted": 2}, "Name": 1,
            "": 2, "": {"": "", "": 0}, "x": 1e999999, "x": ["\\\"", {"a": -1e400, "a": [{"b": 1, "b": 2}]}],)"
               + key;
    };
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        const MixerDocumentData data = randomDocument(seed);
        // One key of each kind of object.
        const std::string text = rewritten(
            encoded(data), {"bufferSize", "trim", "left", "note", "componentType", "id"}, withForeign
        );
        EXPECT_EQ(decoded(text), data) << "seed " << seed << '\n' << text;
    }
}

TEST(MixerDocumentCodec, NamesTheNumberThatIsNotFinite) {
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        MixerDocumentData data;
        data.snapshots.resize(3);
        std::vector<ChannelSettingsData> channels(2);
        channels[1].outputRouting = output::Stereo{0, 1, value};
        data.snapshots[2].channels = channels;
        EXPECT_EQ(
            descriptionOf(encodeMixerDocument(data)),
            "snapshots[2].channels[1].outputRouting.stereo.pan is not a finite number."
        );
    }
}

TEST(MixerDocumentCodec, EncodesASessionWhoseNamesAreNotUTF8) {
    MixerDocumentData data;
    data.snapshots.resize(1);
    data.snapshots[0].name = "Caf\xE9";
    EXPECT_EQ(decoded(encoded(data)).snapshots.at(0).name, "Caf\uFFFD");
}

} // namespace
