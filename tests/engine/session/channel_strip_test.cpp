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

} // namespace
