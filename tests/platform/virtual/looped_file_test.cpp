#include "platform/base/planar_blocks.h"
#include "platform/virtual/looped_file.h"
#include "support/allocation_guard.h"
#include "support/random_blocks.h"
#include "support/sound_files.h"
#include "support/temporary_folder.h"
#include "support/virtual_driver_test.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <functional>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::virtual_devices;
using orvane::test::TemporaryFolder;

float sampleAt(std::size_t channel, std::size_t frame) {
    return static_cast<float>(channel * 1'000'000 + frame);
}

void writeLoop(const std::filesystem::path& path, std::size_t frameCount) {
    orvane::test::Channels channels(3);
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        for (std::size_t frame = 0; frame < frameCount; ++frame)
            channels[channel].push_back(sampleAt(channel, frame));
    orvane::test::writeSound(path, channels, 8000.0);
}

/// Reads `total` frames in blocks of random lengths and compares them with a file of `frameCount` frames.
void expectLoop(LoopedFile& loop, std::size_t frameCount, std::size_t total) {
    orvane::test::Random random(3);
    PlanarBlocks blocks(3, 4096);
    for (std::size_t done = 0; done < total;) {
        const std::size_t length =
            std::min(total - done, static_cast<std::size_t>(orvane::test::wholeBetween(random, 1, 4096)));
        const auto views = blocks.writable(length);
        loop.fill(views);
        for (std::size_t channel = 0; channel < 3; ++channel)
            for (std::size_t frame = 0; frame < length; ++frame)
                ASSERT_EQ(views[channel][frame], sampleAt(channel, (done + frame) % frameCount))
                    << "channel " << channel << ", frame " << done + frame << ", loop of " << frameCount;
        done += length;
    }
}

class LoopedFileTest : public orvane::test::LoggingTest {
  protected:
    const TemporaryFolder folder;
};

TEST_F(LoopedFileTest, RepeatsSeamlesslyAndRestartsWithTheStream) {
    for (const std::size_t frameCount : {4'096, 30'001}) {
        writeLoop(folder / "loop.wav", frameCount);
        LoopedFile loop(folder / "loop.wav", 3, log);
        for (int start = 0; start < 2; ++start) {
            ASSERT_TRUE(loop.start(VirtualPacing::stepped));
            expectLoop(loop, frameCount, 2 * frameCount + 20'000);
            loop.stop();
        }
    }
    EXPECT_THAT(logged(), testing::IsEmpty());
}

TEST_F(LoopedFileTest, IsReadAheadOfALiveStream) {
    writeLoop(folder / "loop.wav", 5'000);
    LoopedFile loop(folder / "loop.wav", 3, log);
    ASSERT_TRUE(loop.start(VirtualPacing::live));
    expectLoop(loop, 5'000, 10'000);
    loop.stop();
    EXPECT_THAT(logged(), testing::IsEmpty());
}

TEST_F(LoopedFileTest, PlaysSilenceAndLogsItOnceIfTheFileIsLost) {
    namespace fs = std::filesystem;
    constexpr std::size_t length = 50'000;
    const fs::path path = folder / "loop.wav";
    struct Case {
        const char* loss;
        std::function<void()> lose;
        /// Frames that are certain to be played before the silence.
        std::size_t atLeast;
        const char* said;
    };
    const Case cases[] = {
        {"removed", [&] { fs::remove(path); }, length, "could not be read: "},
        {"cut short", [&] { fs::resize_file(path, 8'000); }, 1, "breaks off after"},
        {"emptied", [&] { fs::resize_file(path, 0); }, 1, "breaks off after"},
        {"replaced", [&] { fs::rename(folder.add("other", "no sound"), path); }, length,
         "could not be read: "}};
    std::size_t linesBefore = 0;
    for (const auto& [loss, lose, atLeast, said] : cases) {
        SCOPED_TRACE(loss);
        writeLoop(path, length);
        LoopedFile loop(path, 3, log);
        ASSERT_TRUE(loop.start(VirtualPacing::stepped));
        lose();
        expectLoop(loop, length, atLeast);
        PlanarBlocks blocks(3, 1000);
        for (std::size_t done = 0; done < 2 * length; done += 1000)
            loop.fill(blocks.writable(1000));
        EXPECT_THAT(blocks.readable(1000)[1], testing::Each(0.0F));
        loop.stop();
        const auto allLines = logged();
        ASSERT_EQ(allLines.size(), ++linesBefore);
        EXPECT_THAT(allLines.back(), testing::HasSubstr(said));
    }
}

TEST_F(LoopedFileTest, PlaysSilenceAndLogsItIfReadingIsTooSlow) {
    writeLoop(folder / "loop.wav", 100);
    LoopedFile loop(folder / "loop.wav", 3, log);
    ASSERT_TRUE(loop.start(VirtualPacing::live));
    constexpr std::size_t moreThanIsReadAhead = 100'000;
    PlanarBlocks blocks(3, moreThanIsReadAhead);
    {
        const orvane::test::AllocationGuard guard;
        loop.fill(blocks.writable(moreThanIsReadAhead));
    }
    loop.stop();
    EXPECT_EQ(blocks.readable(moreThanIsReadAhead)[2].back(), 0.0F);
    EXPECT_THAT(logged(), testing::ElementsAre(testing::HasSubstr("frames of silence were played instead.")));
}

} // namespace
