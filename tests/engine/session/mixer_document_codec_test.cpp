#include "engine/session/mixer_document_decoder.h"
#include "engine/session/mixer_document_encoder.h"
#include "support/random_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <set>

namespace {

using namespace orvane::session;
using nlohmann::json;
using orvane::platform::Uuid;
using orvane::test::randomDocument;

/// What a text decodes to; a test failure and an empty session where it does not.
MixerDocumentData decoded(std::string_view text) {
    auto data = decodeMixerDocument(text);
    EXPECT_TRUE(data) << data.error().description << '\n' << text;
    return data ? std::move(data).value() : MixerDocumentData{};
}

std::string encoded(const MixerDocumentData& data) {
    auto text = encodeMixerDocument(data);
    EXPECT_TRUE(text) << text.error().description;
    return text ? std::move(text).value() : std::string();
}

json minimalChannel() {
    return {{"name", "Vox"},        {"outputRouting", {{"none", json::object()}}},
            {"genderMode", "male"}, {"muted", true},
            {"bypassed", false},    {"trim", 2}};
}

json minimalDocument() {
    return {
        {"channels", {minimalChannel()}},
        {"masterTargetDB", -16},
        {"bufferSize", 256},
        {"snapshots", json::array()}};
}

TEST(MixerDocumentCodec, BringsEverySessionBack) {
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        const MixerDocumentData data = randomDocument(seed);
        const std::string text = encoded(data);
        EXPECT_EQ(decoded(text), data) << "seed " << seed << '\n' << text;
    }
}

TEST(MixerDocumentCodec, WritesTheAgreedForm) {
    MixerDocumentData data;
    PluginSlot slot{
        *Uuid::parse("0a1b2c3d-0000-4000-8000-000000000001"), "Comp",
        AUComponentIdentity{1635083896, 2, 4294967295}, std::vector<std::uint8_t>{0, 255}, true};
    const PluginSlot empty{*Uuid::parse("0a1b2c3d-0000-4000-8000-000000000002"), {}, {}, {}, false};
    const ChannelSettingsData channel{
        "Vox",
        3,
        output::Stereo{2, 3, -0.5},
        orvane::dsp::GenderTriggerMode::female,
        true,
        false,
        0.1,
        orvane::dsp::VocalRole::backing,
        {slot, empty}};
    ChannelSettingsData spare;
    spare.name = "Spare";
    spare.outputRouting = output::Mono{7};
    data.channels = {channel, spare};
    data.bufferSize = 128;
    data.snapshots = {
        {empty.id, "Scene", {}, -20.5, 1, 2, MIDITrigger{15, 127}}, {empty.id, "Other", {}, 0, 0, 0, {}}};
    data.masterOutputRouting = master_output::Stereo{0, 1};
    data.pluginSlotRecallSafe = {true};

    const auto expected = json::parse(R"({
        "backingGroupGainDB": 0.0, "bufferSize": 128, "duckerReleaseMs": 400.0, "leadGroupGainDB": 0.0,
        "channels": [{
            "name": "Vox", "inputChannelIndex": 3, "genderMode": "female", "muted": true, "bypassed": false,
            "outputRouting": {"stereo": {"left": 2, "pan": -0.5, "right": 3}}, "trim": 0.1, "vocalRole": "backing",
            "pluginSlots": [{
                "id": "0A1B2C3D-0000-4000-8000-000000000001", "pluginName": "Comp", "bypassed": true,
                "component": {"componentType": 1635083896, "componentSubType": 2,
                              "componentManufacturer": 4294967295},
                "presetData": "AP8="
            }, {"id": "0A1B2C3D-0000-4000-8000-000000000002", "bypassed": false}]
        }, {
            "name": "Spare", "genderMode": "neutral", "muted": false, "bypassed": false, "trim": 1.0,
            "outputRouting": {"mono": {"channel": 7}}, "vocalRole": "none", "pluginSlots": []
        }],
        "masterOutputRouting": {"stereo": {"left": 0, "right": 1}}, "masterTargetDB": 0.0,
        "pluginSlotRecallSafe": [true], "referenceNoiseGain": 0.0,
        "snapshots": [{
            "id": "0A1B2C3D-0000-4000-8000-000000000002", "name": "Scene", "channels": [], "masterTargetDB": -20.5,
            "leadGroupGainDB": 1.0, "backingGroupGainDB": 2.0, "midiTrigger": {"channel": 15, "note": 127}
        }, {
            "id": "0A1B2C3D-0000-4000-8000-000000000002", "name": "Other", "channels": [], "masterTargetDB": 0.0,
            "leadGroupGainDB": 0.0, "backingGroupGainDB": 0.0
        }]})");
    const std::string text = encoded(data);
    EXPECT_EQ(json::parse(text), expected) << text;
    EXPECT_NE(text.find('\n'), std::string::npos);
}

TEST(MixerDocumentCodec, WritesTheKeysOfEveryObjectInOrder) {
    const auto isSorted = [](const auto& self, const nlohmann::ordered_json& value) -> bool {
        std::string last;
        for (const auto& [word, member] : value.items()) {
            if (value.is_object() && word < last) return false;
            last = word;
            if (member.is_structured() && !self(self, member)) return false;
        }
        return true;
    };
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        const std::string text = encoded(randomDocument(seed));
        EXPECT_TRUE(isSorted(isSorted, nlohmann::ordered_json::parse(text))) << "seed " << seed << '\n'
                                                                             << text;
    }
}

TEST(MixerDocumentCodec, GivesOlderFilesTheDefaultsOfWhatTheyLack) {
    const MixerDocumentData data = decoded(minimalDocument().dump());
    EXPECT_EQ(data.masterTargetDB, -16.0);
    EXPECT_EQ(data.bufferSize, 256);
    EXPECT_EQ(data.masterOutputRouting, MasterOutputRouting(master_output::None{}));
    EXPECT_EQ(data.leadGroupGainDB, 0.0);
    EXPECT_EQ(data.backingGroupGainDB, 0.0);
    EXPECT_EQ(data.pluginSlotRecallSafe, (std::vector<bool>{false, false, false}));
    EXPECT_EQ(data.referenceNoiseGain, 0.0);
    EXPECT_EQ(data.duckerReleaseMs, 400.0);
    ASSERT_EQ(data.channels.size(), 1U);
    EXPECT_FALSE(data.channels[0].inputChannelIndex);
    EXPECT_EQ(data.channels[0].vocalRole, orvane::dsp::VocalRole::none);
    EXPECT_EQ(data.channels[0].trim, 2.0);
}

TEST(MixerDocumentCodec, TakesNullForAnAbsentSetting) {
    auto document = minimalDocument();
    for (const char* word :
         {"masterOutputRouting", "leadGroupGainDB", "backingGroupGainDB", "pluginSlotRecallSafe",
          "referenceNoiseGain", "duckerReleaseMs"})
        document[word] = nullptr;
    document["snapshots"] = {
        {{"id", Uuid{}.toString()},
         {"name", ""},
         {"channels", json::array()},
         {"masterTargetDB", 0},
         {"leadGroupGainDB", nullptr},
         {"backingGroupGainDB", nullptr},
         {"midiTrigger", nullptr}}};
    auto& channel = document["channels"][0];
    for (const char* word : {"inputChannelIndex", "vocalRole"})
        channel[word] = nullptr;
    const json slot = {
        {"id", Uuid{}.toString()},
        {"bypassed", true},
        {"pluginName", nullptr},
        {"component", nullptr},
        {"presetData", nullptr}};
    channel["pluginSlots"] = json::array({slot, slot, slot, slot, slot});

    auto expected = decoded(minimalDocument().dump());
    expected.snapshots = {Snapshot{}};
    PluginSlot expectedSlot;
    expectedSlot.bypassed = true;
    expected.channels[0].pluginSlots = std::vector<PluginSlot>(5, expectedSlot);
    EXPECT_EQ(decoded(document.dump()), expected);

    channel["pluginSlots"] = nullptr;
    EXPECT_EQ(decoded(document.dump()).channels[0].pluginSlots.size(), 5U);
}

TEST(MixerDocumentCodec, FillsEveryChannelToFiveSlotsAndKeepsLongerLists) {
    for (const std::size_t count : {0U, 2U, 5U, 7U}) {
        json slots = json::array();
        for (std::size_t index = 0; index < count; ++index)
            slots.push_back({{"id", Uuid::random().toString()}, {"bypassed", true}});
        auto document = minimalDocument();
        document["channels"][0]["pluginSlots"] = slots;
        document["snapshots"] = {
            {{"id", Uuid{}.toString()},
             {"name", ""},
             {"masterTargetDB", 0},
             {"channels", document["channels"]}}};

        const auto data = decoded(document.dump());
        for (const auto* channels : {&data.channels, &data.snapshots.at(0).channels}) {
            const auto& found = channels->at(0).pluginSlots;
            ASSERT_EQ(found.size(), std::max<std::size_t>(count, 5));
            std::set<Uuid> ids;
            for (std::size_t index = 0; index < found.size(); ++index) {
                EXPECT_EQ(found[index].bypassed, index < count) << "slot " << index << " of " << count;
                if (index < count) {
                    EXPECT_EQ(found[index].id.toString(), slots[index]["id"]);
                }
                ids.insert(found[index].id);
            }
            EXPECT_EQ(ids.size(), found.size());
        }
    }
}

TEST(MixerDocumentCodec, IgnoresKeysWithoutAMeaningWhateverTheyHold) {
    auto document = minimalDocument();
    document["channels"][0]["pluginSlots"] = json::array();
    for (int count = 0; count < 5; ++count)
        document["channels"][0]["pluginSlots"].push_back({{"id", Uuid{}.toString()}, {"bypassed", false}});
    const auto expected = decoded(document.dump());
    const json foreign = {{"name", 7}, {"list", {1, "two", nullptr, {{"id", json::array()}}}}};
    document["future"] = foreign;
    document["Name"] = foreign;
    document["channels"][0][""] = foreign;
    document["channels"][0]["outputRouting"]["none"]["future"] = foreign;
    document["channels"][0]["pluginSlots"][2]["future"] = 1;
    EXPECT_EQ(decoded(document.dump()), expected);
}

TEST(MixerDocumentCodec, NamesTheNumberThatHasNoForm) {
    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        MixerDocumentData data;
        data.snapshots.resize(3);
        data.snapshots[2].channels.resize(2);
        data.snapshots[2].channels[1].outputRouting = output::Stereo{0, 1, value};
        const auto text = encodeMixerDocument(data);
        ASSERT_FALSE(text) << value;
        EXPECT_EQ(
            text.error().description,
            "snapshots[2].channels[1].outputRouting.stereo.pan is not a finite number."
        );
    }
}

TEST(MixerDocumentCodec, SavesASessionWhoseNamesAreNotUTF8) {
    MixerDocumentData data;
    data.snapshots.resize(1);
    data.snapshots[0].name = "Caf\xE9";
    EXPECT_EQ(decoded(encoded(data)).snapshots.at(0).name, "Caf\uFFFD");
}

} // namespace
