#include "platform/base/planar_blocks.h"
#include "platform/virtual/output_recorder.h"
#include "support/allocation_guard.h"
#include "support/file_size_limit.h"
#include "support/random_blocks.h"
#include "support/server_process.h"
#include "support/sound_files.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::virtual_devices;
using namespace orvane::test;

/// Passes noise to the recorder in blocks of random lengths and returns it.
Channels recordNoise(OutputRecorder& recorder, std::size_t blockCount) {
    orvane::test::Random random(blockCount);
    Channels given(2);
    PlanarBlocks blocks(2, 4096);
    for (std::size_t i = 0; i < blockCount; ++i) {
        const auto length = static_cast<std::size_t>(orvane::test::wholeBetween(random, 1, 4096));
        const auto views = blocks.writable(length);
        for (std::size_t channel = 0; channel < 2; ++channel) {
            orvane::test::fillWithSignal(random, views[channel]);
            given[channel].insert(given[channel].end(), views[channel].begin(), views[channel].end());
        }
        recorder.take(blocks.readable(length));
    }
    return given;
}

class OutputRecorderTest : public testing::Test {
  protected:
    const TemporaryFolder folder;
};

TEST_F(OutputRecorderTest, KeepsEachTakeBitForBit) {
    folder.add("mix-2.wav", "of yesterday");
    OutputRecorder recorder(folder / "mix.wav", 2, 48000.0);
    ASSERT_TRUE(recorder.start(VirtualPacing::live));
    const Channels first = recordNoise(recorder, 20);
    recorder.stop();
    ASSERT_TRUE(recorder.start(VirtualPacing::stepped));
    const Channels second = recordNoise(recorder, 200);
    recorder.stop();
    EXPECT_EQ(readSound(folder / "mix.wav"), first);
    EXPECT_EQ(readSound(folder / "mix-3.wav"), second);
    EXPECT_EQ(recorder.file(), folder / "mix-3.wav");
    EXPECT_EQ(orvane::test::contentOf(folder / "mix-2.wav"), "of yesterday");
    EXPECT_THAT(folder.names(), testing::SizeIs(3));
    EXPECT_FALSE(recorder.takeProblem());
}

/// Checks that `found` is the beginning of `given`, with at least `leastFrames` frames.
void expectBeginning(const Channels& found, const Channels& given, std::size_t leastFrames) {
    ASSERT_EQ(found.size(), given.size());
    EXPECT_GE(found[0].size(), leastFrames);
    for (std::size_t channel = 0; channel < found.size(); ++channel)
        EXPECT_TRUE(std::ranges::equal(
            found[channel], std::span(given[channel]).first(std::min(found[0].size(), given[0].size()))
        )) << channel;
}

TEST_F(OutputRecorderTest, IsReadableUpToTheLastSecondAtAnyTime) {
    constexpr std::size_t rate = 8000;
    for (const char* name : {"mix.wav", "mix.w64", "mix.rf64"}) {
        OutputRecorder recorder(folder / name, 2, rate);
        ASSERT_TRUE(recorder.start(VirtualPacing::stepped));
        Channels given(2);
        for (const std::size_t blockCount : {1, 5, 9, 2}) {
            const Channels more = recordNoise(recorder, blockCount);
            for (std::size_t channel = 0; channel < 2; ++channel)
                given[channel].insert(given[channel].end(), more[channel].begin(), more[channel].end());
            // Exactly what a kill would leave now.
            const std::size_t recorded = given[0].size();
            expectBeginning(readSound(folder / name), given, recorded > rate ? recorded - rate : 1);
        }
    }
}

TEST_F(OutputRecorderTest, KeepsACompleteFileAndLogsItIfTheDiskIsFull) {
    for (const std::string name : {"mix.wav", "mix.w64"}) {
        OutputRecorder recorder(folder / name, 2, 48000.0);
        ASSERT_TRUE(recorder.start(VirtualPacing::live));
        Channels given;
        {
            const orvane::test::FileSizeLimit limit(300'003);
            given = recordNoise(recorder, 30);
            recorder.stop();
        }
        expectBeginning(readSound(folder / name), given, 37'000);
        EXPECT_LE(std::filesystem::file_size(folder / name), 300'003U);
        const auto problem = recorder.takeProblem();
        ASSERT_TRUE(problem);
        EXPECT_THAT(*problem, testing::HasSubstr(name + "\" could not be written: File too large."));
        EXPECT_FALSE(recorder.takeProblem()) << "once is enough";
    }
}

TEST_F(OutputRecorderTest, IsCompletedOnExit) {
    const int exitCode = orvane::test::exitCodeOfChild([this] {
        OutputRecorder recorder(folder / "mix.wav", 2, 48000.0);
        if (!recorder.start(VirtualPacing::live)) ::_exit(2);
        recordNoise(recorder, 20);
        // Windowing libraries do this when they lose their display.
        std::exit(0);
    });
    EXPECT_EQ(exitCode, 0);
    OutputRecorder recorder(folder / "same.wav", 2, 48000.0);
    ASSERT_TRUE(recorder.start(VirtualPacing::stepped));
    EXPECT_EQ(readSound(folder / "mix.wav"), recordNoise(recorder, 20));
}

TEST_F(OutputRecorderTest, CountsTheFramesLostToASlowDisk) {
    OutputRecorder recorder(folder / "mix.wav", 1, 1000.0);
    constexpr std::size_t moreThanTheQueueHolds = 10'000;
    PlanarBlocks blocks(1, moreThanTheQueueHolds);
    ASSERT_TRUE(recorder.start(VirtualPacing::live));
    {
        const orvane::test::AllocationGuard guard;
        recorder.take(blocks.readable(moreThanTheQueueHolds));
    }
    recorder.stop();
    const std::size_t kept = readSound(folder / "mix.wav").at(0).size();
    EXPECT_LT(kept, moreThanTheQueueHolds);
    const std::string dropped = "lacks " + std::to_string(moreThanTheQueueHolds - kept) + " frames";
    EXPECT_THAT(recorder.takeProblem().value_or(""), testing::HasSubstr(dropped));
}

} // namespace
