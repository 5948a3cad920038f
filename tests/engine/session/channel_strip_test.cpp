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

} // namespace
