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
    struct Case {
        OutputRouting from;
        OutputRouting stereo;
        OutputRouting mono;
    };
    for (const Case& one :
         {Case{output::None{}, output::Stereo{0, 1, 0.0}, output::Mono{0}},
          Case{output::Mono{5}, output::Stereo{4, 5, 0.0}, output::Mono{5}},
          Case{output::Mono{-3}, output::Stereo{-2, -1, 0.0}, output::Mono{-3}},
          Case{output::Stereo{6, 7, 0.3}, output::Stereo{6, 7, 0.0}, output::Mono{6}}}) {
        EXPECT_EQ(asStereo(one.from), one.stereo);
        EXPECT_EQ(asMono(one.from), one.mono);
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
    struct Case {
        MasterOutputRouting routing;
        bool existsOnEight;
        std::uint64_t needed;
    };
    for (const Case& one :
         {Case{output::None{}, true, 0}, Case{output::Mono{7}, true, 8}, Case{output::Mono{8}, false, 9},
          Case{output::Mono{-1}, false, 0}, Case{master_output::Stereo{6, 7}, true, 8},
          Case{master_output::Stereo{7, 8}, false, 9}, Case{master_output::Stereo{-1, 3}, false, 4}}) {
        EXPECT_EQ(exists(one.routing, 8), one.existsOnEight) << one.needed;
        EXPECT_EQ(outputsNeeded(one.routing), one.needed);
    }
    constexpr std::int64_t farthest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(outputsNeeded(OutputRouting(output::Mono{farthest})), static_cast<std::uint64_t>(farthest) + 1);
}

} // namespace
