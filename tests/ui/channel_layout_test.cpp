#include "ui/mixer/channel_layout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace orvane::ui;
using Mode = ChannelLayoutMode;

TEST(ChannelLayout, OffersTheSensibleModesAndDividesStripsIntoPagesAndRows) {
    struct Case {
        ChannelLayout layout;
        std::size_t offered;
        std::vector<std::string> titles;
        std::vector<StripRange> rows;
    };
    const Case cases[] = {
        {{2, Mode::all}, 1, {"1-2"}, {{0, 2}}},
        {{16, Mode::all}, 1, {"1-16"}, {{0, 16}}},
        {{24, Mode::paginated, 0}, 2, {"1-16", "17-24"}, {{0, 16}}},
        {{24, Mode::paginated, 1}, 2, {"1-16", "17-24"}, {{16, 24}}},
        {{32, Mode::paginated, 1}, 2, {"1-16", "17-32"}, {{16, 32}}},
        {{40, Mode::twoRows, 0}, 3, {"1-32", "33-40"}, {{0, 16}, {16, 32}}},
        {{40, Mode::twoRows, 1}, 3, {"1-32", "33-40"}, {{32, 40}}},
        {{48, Mode::all, 2}, 3, {"1-48"}, {{0, 48}}},
        {{48, Mode::paginated, 7}, 3, {"1-16", "17-32", "33-48"}, {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::Message() << each.layout.channelCount << " page " << each.layout.page);
        EXPECT_EQ(each.layout.offeredModes().size(), each.offered);
        ASSERT_EQ(each.layout.pageCount(), each.titles.size());
        for (std::size_t page = 0; page < each.titles.size(); ++page)
            EXPECT_EQ(each.layout.pageTitle(page).toStdString(), each.titles[page]);
        EXPECT_EQ(each.layout.rows(), each.rows);
    }
    EXPECT_EQ((ChannelLayout{24}.label(Mode::all)), "All 24");
}

} // namespace
