#include "engine/session/channel_strip.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace orvane::session;
using orvane::platform::Uuid;

TEST(ChannelStrip, DefaultStripsAreNumberedAndHaveUniqueIds) {
    std::set<Uuid> ids;
    int number = 0;
    for (const ChannelStrip& strip : makeDefaultStrips(12)) {
        EXPECT_EQ(strip.name, "Ch " + std::to_string(++number));
        EXPECT_FALSE(strip.inputChannelIndex) << strip.name;
        EXPECT_EQ(strip.outputRouting, OutputRouting(output::None{})) << strip.name;
        ids.insert(strip.id);
        for (const PluginSlot& slot : strip.pluginSlots) {
            EXPECT_EQ(slot, (PluginSlot{slot.id, {}, {}, {}, false})) << strip.name;
            ids.insert(slot.id);
        }
    }
    EXPECT_EQ(ids.size(), 12U * (1U + 5U));
}

TEST(ChannelStrip, SettingsApplyUpToTheShorterLengthAndKeepIds) {
    for (const std::size_t count : {0U, 4U, 8U, 10U}) {
        auto strips = makeDefaultStrips(8);
        const auto before = strips;
        const auto loaded = settingsOf(makeDefaultStrips(count));
        applySettings(loaded, strips);
        for (std::size_t index = 0; index < strips.size(); ++index) {
            const auto& expected = index < count ? loaded[index] : before[index].settings();
            EXPECT_EQ(strips[index].settings(), expected) << "strip " << index << " of " << count;
            EXPECT_EQ(strips[index].id, before[index].id) << "strip " << index << " of " << count;
        }
    }
}

TEST(AUComponentIdentity, HashesByAllItsCodesAndTheirOrder) {
    std::set<std::size_t> hashes;
    for (const AUComponentIdentity& identity :
         std::initializer_list<AUComponentIdentity>{{1, 2, 3}, {2, 1, 3}, {1, 3, 2}, {1, 2, 4}, {1, 2, 3}})
        hashes.insert(std::hash<AUComponentIdentity>{}(identity));
    EXPECT_EQ(hashes.size(), 4U);
}

} // namespace
