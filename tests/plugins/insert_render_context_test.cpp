#include "plugins/insert_render_context.h"
#include "support/allocation_guard.h"
#include "support/scripted_unit.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using namespace orvane;
using namespace test;
using plugins::InsertRenderContext;
using testing::ElementsAre;
using testing::HasSubstr;

/// A context around a scripted effect, and the log lines.
struct Insert {
    Insert(std::deque<UnitAct> script, std::size_t channels)
        : unit(std::move(script)), context(unit.renderBlock(), channels, "Ch3 slot2: Gain", log) {}

    std::vector<double> process(std::vector<double> samples, std::int64_t frameCount) {
        {
            const test::AllocationGuard guard;
            context.process(samples, frameCount);
        }
        log.flush();
        return samples;
    }

    std::vector<std::string> lines;
    platform::SystemLog log{[this](const platform::LogLine& line) { lines.emplace_back(line.text); }};
    ScriptedUnit unit;
    InsertRenderContext context;
};

constexpr double tenth = 0.1F;

TEST(InsertRenderContext, ReturnsTheEffectsOutputOrTheUnchangedInput) {
    const std::tuple<const char*, UnitAct, std::size_t, double> cases[] = {
        {"mono", UnitAct::doubles, 1, 2.0 * tenth},
        {"stereo of equal sides", UnitAct::doubles, 2, 2.0 * tenth},
        {"mean of both sides", UnitAct::leftOnly, 2, 0.5},
        {"error", UnitAct::fails, 1, 0.1},
        {"error, stereo", UnitAct::fails, 2, 0.1},
        {"lost pointer", UnitAct::losesPointer, 1, 0.1},
        {"lost pointer, stereo", UnitAct::losesPointer, 2, 0.1},
        {"dropped output", UnitAct::dropsOutput, 2, 0.1},
        {"buffers of its own", UnitAct::replacesPointers, 2, 0.25}};
    for (const auto& [what, act, channels, expected] : cases) {
        Insert insert({act}, channels);
        EXPECT_EQ(insert.process(std::vector<double>(64, 0.1), 64), std::vector<double>(64, expected))
            << what;
        EXPECT_EQ(insert.context.sampleTime(), 64.0) << what;
    }
}

TEST(InsertRenderContext, SilencesInvalidSamples) {
    for (const std::size_t channels : {1U, 2U}) {
        Insert insert({UnitAct::doubles}, channels);
        EXPECT_EQ(insert.process({3e38, tenth}, 2), (std::vector<double>{0.0, 2.0 * tenth})) << channels;
    }
}

TEST(InsertRenderContext, RendersOnlyBlocksThatFit) {
    Insert insert({UnitAct::doubles}, 1);
    for (const std::int64_t frameCount : {0L, -1L, 4097L})
        EXPECT_EQ(
            insert.process(std::vector<double>(4097, tenth), frameCount), std::vector<double>(4097, tenth)
        ) << frameCount;
    insert.context.process({}, 64);
    EXPECT_EQ(insert.unit.calls, 0);
    EXPECT_EQ(insert.context.sampleTime(), 0.0);
    EXPECT_TRUE(insert.lines.empty());

    EXPECT_EQ(insert.process(std::vector<double>(4096, tenth), 4096), std::vector<double>(4096, 2.0 * tenth));
    EXPECT_EQ(insert.process({tenth, tenth}, 1), (std::vector<double>{2.0 * tenth, tenth}));
    EXPECT_EQ(insert.unit.lastTime.mSampleTime, 4096.0);
    EXPECT_EQ(insert.unit.lastTime.mFlags, platform::kAudioTimeStampSampleTimeValid);
    EXPECT_EQ(insert.context.sampleTime(), 4097.0);

    Insert withoutChannels({UnitAct::doubles}, 0);
    EXPECT_EQ(withoutChannels.process({tenth}, 1), std::vector<double>{tenth});
    EXPECT_EQ(withoutChannels.unit.calls, 0);
}

TEST(InsertRenderContext, PassesItsOwnBuffersAgainAfterTheyWereReplaced) {
    Insert insert({UnitAct::doubles, UnitAct::replacesPointers, UnitAct::losesPointer, UnitAct::doubles}, 2);
    insert.process({tenth}, 1);
    const std::vector<const void*> first = insert.unit.handed;
    for (int call = 0; call < 3; ++call) {
        insert.process({tenth}, 1);
        EXPECT_EQ(insert.unit.handed, first) << "call " << call;
    }
}

TEST(InsertRenderContext, LogsEachChangeOfStatusOnce) {
    Insert insert(
        {UnitAct::fails, UnitAct::fails, UnitAct::losesPointer, UnitAct::losesPointer, UnitAct::doubles,
         UnitAct::doubles, UnitAct::fails},
        1
    );
    for (int block = 0; block < 9; ++block)
        insert.process({tenth}, 1);
    EXPECT_THAT(
        insert.lines,
        ElementsAre(
            "Ch3 slot2: Gain: renderBlock failed, status -10863 -- signal is passing through "
            "UNPROCESSED, not silenced (see InsertRenderContext.process's doc comment).",
            "Ch3 slot2: Gain: renderBlock returned noErr but didn't provide a usable output pointer for "
            "every channel -- signal is passing through UNPROCESSED, not silenced.",
            "Ch3 slot2: Gain: render recovered (now noErr)", HasSubstr("renderBlock failed, status -10863")
        )
    );
}

} // namespace
