#include "engine/routing_operations.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace orvane::engine;
namespace output = orvane::session::output;
namespace master_output = orvane::session::master_output;
using orvane::session::MasterOutputRouting;
using orvane::session::OutputRouting;

TEST(RoutingOperations, GoBetweenMonoAndStereoFromTheChannelThatIsThere) {
    const std::tuple<OutputRouting, OutputRouting, OutputRouting> cases[] = {
        {output::None{}, output::Stereo{0, 1, 0.0}, output::Mono{0}},
        {output::Mono{5}, output::Stereo{4, 5, 0.0}, output::Mono{5}},
        {output::Mono{-3}, output::Stereo{-2, -1, 0.0}, output::Mono{-3}},
        {output::Stereo{6, 7, 0.3}, output::Stereo{6, 7, 0.0}, output::Mono{6}}};
    for (const auto& [from, stereo, mono] : cases) {
        EXPECT_EQ(asStereo(from), stereo);
        EXPECT_EQ(asMono(from), mono);
    }
    EXPECT_EQ(
        asStereo(MasterOutputRouting(output::Mono{3})), MasterOutputRouting(master_output::Stereo{2, 3})
    );
    EXPECT_EQ(asMono(MasterOutputRouting(master_output::Stereo{6, 7})), MasterOutputRouting(output::Mono{6}));
}

TEST(RoutingOperations, MovePairsAndLeaveTheRestAlone) {
    const OutputRouting mono = output::Mono{6};
    EXPECT_EQ(withStereoPair(output::Stereo{6, 7, -0.5}, 2), OutputRouting(output::Stereo{2, 3, -0.5}));
    EXPECT_EQ(withStereoPair(mono, 2), mono);
    EXPECT_EQ(withPan(output::Stereo{6, 7, 0.0}, 1.7), OutputRouting(output::Stereo{6, 7, 1.0}));
    EXPECT_EQ(withPan(output::Stereo{6, 7, 0.0}, -3.0), OutputRouting(output::Stereo{6, 7, -1.0}));
    EXPECT_EQ(withPan(mono, 0.5), mono);
    EXPECT_EQ(
        withStereoPair(MasterOutputRouting(master_output::Stereo{0, 1}), 4),
        MasterOutputRouting(master_output::Stereo{4, 5})
    );
    EXPECT_EQ(withStereoPair(MasterOutputRouting(output::None{}), 4), MasterOutputRouting(output::None{}));
}

TEST(RoutingOperations, KnowWhatADeviceMustHave) {
    const std::tuple<MasterOutputRouting, bool, std::uint64_t> cases[] = {
        {output::None{}, true, 0},
        {output::Mono{7}, true, 8},
        {output::Mono{8}, false, 9},
        {output::Mono{-1}, false, 0},
        {master_output::Stereo{6, 7}, true, 8},
        {master_output::Stereo{7, 8}, false, 9},
        {master_output::Stereo{-1, 3}, false, 4}};
    for (const auto& [routing, existsOnEight, needed] : cases) {
        EXPECT_EQ(exists(routing, 8), existsOnEight) << needed;
        EXPECT_EQ(outputsNeeded(routing), needed);
    }
    constexpr std::int64_t farthest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(outputsNeeded(OutputRouting(output::Mono{farthest})), static_cast<std::uint64_t>(farthest) + 1);
}

} // namespace
