#include "engine/session/channel_strip.h"

#include <gtest/gtest.h>

#include <set>
#include <unordered_set>

namespace {

using namespace orvane::session;
using orvane::platform::Uuid;

std::vector<ChannelSettingsData> namedSettings(std::size_t count) {
    std::vector<ChannelSettingsData> settings(count);
    for (std::size_t index = 0; index < count; ++index)
        settings[index].name = "Loaded " + std::to_string(index);
    return settings;
}

TEST(ChannelStrip, StartsAudibleAtUnityAndUngrouped) {
    const Uuid id = Uuid::random();
    const ChannelStrip strip = ChannelStrip::make(id, "Vox", 4, 3);
    EXPECT_EQ(strip.id, id);
    EXPECT_EQ(strip.name, "Vox");
    EXPECT_EQ(strip.inputChannelIndex, 4);
    EXPECT_EQ(strip.outputRouting, OutputRouting(output::Mono{3}));
    EXPECT_EQ(strip.genderMode, orvane::dsp::GenderTriggerMode::neutral);
    EXPECT_FALSE(strip.muted);
    EXPECT_FALSE(strip.bypassed);
    EXPECT_EQ(strip.trim, 1.0);
    EXPECT_EQ(strip.vocalRole, orvane::dsp::VocalRole::none);
}

TEST(ChannelStrip, IsNotOutputWithoutAnOutputChannel) {
    EXPECT_EQ(ChannelStrip::make({}, "", 0, std::nullopt).outputRouting, OutputRouting(output::None{}));
}

TEST(ChannelStrip, DefaultSetHasNamesInOrderAndIdsOfTheirOwn) {
    const auto strips = makeDefaultStrips(12);
    ASSERT_EQ(strips.size(), 12U);
    std::set<Uuid> ids;
    for (std::size_t index = 0; index < strips.size(); ++index) {
        const ChannelStrip& strip = strips[index];
        EXPECT_EQ(strip.name, "Ch " + std::to_string(index + 1));
        EXPECT_FALSE(strip.inputChannelIndex) << strip.name;
        EXPECT_EQ(strip.outputRouting, OutputRouting(output::None{})) << strip.name;
        EXPECT_EQ(strip.pluginSlots.size(), 5U) << strip.name;
        ids.insert(strip.id);
        for (const PluginSlot& slot : strip.pluginSlots) {
            EXPECT_TRUE(slot.isEmpty() && !slot.pluginName && !slot.presetData && !slot.bypassed)
                << strip.name;
            ids.insert(slot.id);
        }
    }
    EXPECT_EQ(ids.size(), 12U + 12U * 5U);
}

TEST(ChannelStrip, EqualsOnlyAStripWithTheSameSettingsAndId) {
    const ChannelStrip strip = ChannelStrip::make(Uuid::random(), "Vox", 0, 0);
    ChannelStrip other = strip;
    EXPECT_EQ(strip, other);
    other.trim = 1.5;
    EXPECT_NE(strip, other);
    other = strip;
    other.id = Uuid::random();
    EXPECT_NE(strip, other);
}

TEST(ChannelStrip, TakesSettingsWholeAndKeepsItsId) {
    const ChannelStrip source = ChannelStrip::make(Uuid::random(), "Source", 7, 2);
    ChannelStrip strip = ChannelStrip::make(Uuid::random(), "Strip", {}, {});
    const Uuid id = strip.id;
    strip.apply(source.settings());
    EXPECT_EQ(strip.id, id);
    EXPECT_EQ(strip.settings(), source.settings());

    const ChannelStrip before = strip;
    strip.apply(strip.settings());
    EXPECT_EQ(strip, before);
}

TEST(ChannelStrip, ListsOfSettingsApplyOverTheShorterLength) {
    for (const std::size_t settingsCount : {0U, 4U, 8U, 10U}) {
        auto strips = makeDefaultStrips(8);
        const auto before = strips;
        const auto settings = namedSettings(settingsCount);
        applySettings(settings, strips);
        for (std::size_t index = 0; index < strips.size(); ++index) {
            EXPECT_EQ(strips[index].id, before[index].id);
            EXPECT_EQ(
                strips[index].settings(), index < settingsCount ? settings[index] : before[index].settings()
            ) << "strip "
              << index << " of " << settingsCount << " settings";
        }
        EXPECT_EQ(settingsOf(strips).size(), 8U);
        EXPECT_EQ(settingsOf(strips)[7], strips[7].settings());
    }
}

TEST(AUComponentIdentity, IsAKeyOfAllItsCodes) {
    const std::unordered_set<AUComponentIdentity> keys = {
        {1, 2, 3}, {2, 1, 3}, {1, 3, 2}, {3, 2, 1}, {1, 2, 3}};
    EXPECT_EQ(keys.size(), 4U);
    EXPECT_TRUE(keys.contains({1, 3, 2}));
    EXPECT_FALSE(keys.contains({1, 2, 4}));
}

} // namespace
