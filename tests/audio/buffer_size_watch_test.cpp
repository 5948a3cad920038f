#include "audio/core_audio_io_engine.h"
#include "support/io_engine_harness.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace {

using namespace orvane;
using audio::CoreAudioIOEngine;

struct BufferSizeWatchTest : testing::Test, test::IOEngineHarness {
    /// Sets an engine up that keeps the sizes it is told.
    void setUpEngine() {
        engine.emplace(hardware, configuration);
        engine->onDeviceBufferSizeChangedExternally = [this](std::uint32_t size) { told.push_back(size); };
        ASSERT_TRUE(engine->setup());
    }

    std::vector<std::uint32_t> toldOf(const std::vector<std::uint32_t>& sizes) {
        told.clear();
        for (const std::uint32_t size : sizes)
            hardware.changeBufferSize(7, size);
        return told;
    }

    std::optional<CoreAudioIOEngine> engine;
    std::vector<std::uint32_t> told;
};

using Sizes = std::vector<std::uint32_t>;

TEST_F(BufferSizeWatchTest, TellsEachForeignSizeOnceInARow) {
    setUpEngine();
    EXPECT_EQ(toldOf({256}), Sizes{});
    EXPECT_EQ(toldOf({512, 512}), Sizes{512});
    EXPECT_EQ(toldOf({1024, 512}), (Sizes{1024, 512}));
    EXPECT_EQ(toldOf({256, 512}), Sizes{});
}

TEST_F(BufferSizeWatchTest, TakesTheSizeThatTheUnitWasSetUpForAsTold) {
    hardware.devices[0].keepsBufferSize = true;
    setUpEngine();
    EXPECT_EQ(toldOf({512, 256}), Sizes{});
    EXPECT_EQ(toldOf({64, 512}), (Sizes{64, 512}));
}

TEST_F(BufferSizeWatchTest, SaysNothingWhereTheSizeCannotBeRead) {
    setUpEngine();
    hardware.failures = {{"AudioObjectGetPropertyData 7 fsiz", -1}};
    EXPECT_EQ(toldOf({64}), Sizes{});
    hardware.failures.clear();
    EXPECT_EQ(toldOf({64}), Sizes{64});
}

TEST_F(BufferSizeWatchTest, NeedsNobodyToTell) {
    engine.emplace(hardware, configuration);
    ASSERT_TRUE(engine->setup());
    EXPECT_EQ(toldOf({64}), Sizes{});
}

TEST_F(BufferSizeWatchTest, FindsNothingAfterTheEngineIsGone) {
    setUpEngine();
    engine.reset();
    hardware.calls.clear();
    EXPECT_EQ(toldOf({64}), Sizes{});
    EXPECT_TRUE(hardware.calls.empty());
}

TEST_F(BufferSizeWatchTest, OutlivesItsEngineWhileANotificationIsUnderWay) {
    std::atomic<bool> isOver = false;
    std::thread notifier([&] {
        for (std::uint32_t size = 300; !isOver; size = size == 300 ? 400 : 300)
            hardware.changeBufferSize(7, size);
    });
    const auto count = std::make_shared<std::atomic<int>>(0);
    for (int i = 0; i < 50; ++i) {
        CoreAudioIOEngine passing(hardware, configuration);
        const int before = *count;
        passing.onDeviceBufferSizeChangedExternally = [count](std::uint32_t) { ++*count; };
        ASSERT_TRUE(passing.setup());
        while (*count == before)
            std::this_thread::yield();
    }
    isOver = true;
    notifier.join();
}

} // namespace
