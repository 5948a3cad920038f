#include "platform/virtual_audio/frame_queue.h"
#include "platform/virtual_audio/planar_blocks.h"
#include "support/random_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <thread>

namespace {

using namespace orvane::platform;

/// Writes the numbers from `first` on into channel 0 and their negatives into channel 1.
void count(std::span<const std::span<float>> blocks, std::size_t first) {
    for (std::size_t frame = 0; frame < blocks.front().size(); ++frame) {
        blocks[0][frame] = static_cast<float>(first + frame);
        blocks[1][frame] = -static_cast<float>(first + frame);
    }
}

void expectCount(std::span<const std::span<float>> blocks, std::size_t frameCount, std::size_t first) {
    for (std::size_t frame = 0; frame < frameCount; ++frame) {
        ASSERT_EQ(blocks[0][frame], static_cast<float>(first + frame)) << "frame " << first + frame;
        ASSERT_EQ(blocks[1][frame], -static_cast<float>(first + frame)) << "frame " << first + frame;
    }
}

TEST(FrameQueue, KeepsTheOrderOfFramesBetweenTwoThreads) {
    constexpr std::size_t total = 200'000;
    FrameQueue queue(2, 1'000);
    std::thread producer([&queue] {
        orvane::test::Random random(1);
        PlanarBlocks blocks(2, 700);
        for (std::size_t done = 0; done < total;) {
            const auto length = static_cast<std::size_t>(orvane::test::wholeBetween(random, 1, 700));
            count(blocks.writable(std::min(length, total - done)), done);
            done += queue.push(blocks.readable(std::min(length, total - done)));
        }
    });
    orvane::test::Random random(2);
    PlanarBlocks blocks(2, 700);
    for (std::size_t done = 0; done < total;) {
        const auto views =
            blocks.writable(static_cast<std::size_t>(orvane::test::wholeBetween(random, 1, 700)));
        const std::size_t popped = queue.pop(views);
        expectCount(views, popped, done);
        done += popped;
    }
    producer.join();
    EXPECT_EQ(queue.freeFrames(), 1'000U);
}

TEST(FrameQueue, TakesWhatFitsAndGivesWhatItHas) {
    FrameQueue queue(2, 100);
    PlanarBlocks blocks(2, 80);
    count(blocks.writable(80), 0);
    EXPECT_EQ(queue.push(blocks.readable(80)), 80U);
    EXPECT_EQ(queue.push(blocks.readable(80)), 20U);
    EXPECT_EQ(queue.push(blocks.readable(80)), 0U);
    EXPECT_EQ(queue.freeFrames(), 0U);
    EXPECT_EQ(queue.pop(blocks.writable(80)), 80U);
    EXPECT_EQ(queue.pop(blocks.writable(80)), 20U);
    expectCount(blocks.writable(80), 80, 0);
    EXPECT_EQ(queue.pop(blocks.writable(80)), 0U);
}

} // namespace
