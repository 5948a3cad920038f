#include "platform/sound_file_reader.h"
#include "platform/virtual_audio/output_recorder.h"
#include "platform/virtual_audio/planar_blocks.h"
#include "support/allocation_guard.h"
#include "support/random_blocks.h"
#include "support/temporary_folder.h"
#include "support/virtual_driver_test.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace orvane::platform;
using orvane::test::TemporaryFolder;

using Channels = std::vector<std::vector<float>>;

Channels contentOf(const std::filesystem::path& path) {
    auto reader = SoundFileReader::open(path);
    if (!reader) return {};
    Channels samples(
        reader.value().channelCount(),
        std::vector<float>(static_cast<std::size_t>(reader.value().frameCount()))
    );
    const std::vector<std::span<float>> views(samples.begin(), samples.end());
    EXPECT_EQ(reader.value().read(views).value(), samples.front().size());
    return samples;
}

/// Hands the recorder noise in blocks of random lengths and returns it all.
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

class OutputRecorderTest : public orvane::test::LoggingTest {
  protected:
    const TemporaryFolder folder;
};

TEST_F(OutputRecorderTest, KeepsEachTakeBitForBit) {
    OutputRecorder recorder(folder / "mix.wav", 2, 48000.0, log);
    ASSERT_TRUE(recorder.start(VirtualPacing::live));
    const Channels first = recordNoise(recorder, 20);
    EXPECT_FALSE(std::filesystem::exists(folder / "mix.wav"));
    recorder.stop();
    ASSERT_TRUE(recorder.start(VirtualPacing::stepped));
    const Channels second = recordNoise(recorder, 200);
    recorder.stop();
    EXPECT_EQ(contentOf(folder / "mix.wav"), first);
    EXPECT_EQ(contentOf(folder / "mix-2.wav"), second);
    EXPECT_THAT(folder.names(), testing::SizeIs(2));
    EXPECT_THAT(logged(), testing::IsEmpty());
}

TEST_F(OutputRecorderTest, CountsTheFramesThatTheDiskWasTooSlowFor) {
    OutputRecorder recorder(folder / "mix.wav", 1, 1000.0, log);
    constexpr std::size_t moreThanTheQueueHolds = 10'000;
    PlanarBlocks blocks(1, moreThanTheQueueHolds);
    ASSERT_TRUE(recorder.start(VirtualPacing::live));
    {
        const orvane::test::AllocationGuard guard;
        recorder.take(blocks.readable(moreThanTheQueueHolds));
    }
    recorder.stop();
    const std::size_t kept = contentOf(folder / "mix.wav").at(0).size();
    EXPECT_LT(kept, moreThanTheQueueHolds);
    const std::string dropped = "lacks " + std::to_string(moreThanTheQueueHolds - kept) + " frames";
    EXPECT_THAT(logged(), testing::ElementsAre(testing::HasSubstr(dropped)));
}

TEST_F(OutputRecorderTest, SaysWhyNothingIsRecorded) {
    std::filesystem::create_directory(folder / "gone");
    OutputRecorder recorder(folder / "gone" / "mix.wav", 2, 48000.0, log);
    ASSERT_TRUE(recorder.start(VirtualPacing::live));
    recordNoise(recorder, 1);
    std::filesystem::remove_all(folder / "gone");
    recorder.stop();
    EXPECT_THAT(logged(), testing::ElementsAre(testing::HasSubstr("mix.wav")));
}

} // namespace
