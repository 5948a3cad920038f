#include "audio/ring_buffer.h"
#include "baseline/plain_mixer.h"
#include "support/allocation_guard.h"
#include "support/random_blocks.h"

#include <gtest/gtest.h>

#include <numeric>
#include <thread>
#include <vector>

namespace {

using namespace orvane;
using audio::RingBuffer;

std::vector<float> ramp(std::size_t count, float first) {
    std::vector<float> samples(count);
    std::iota(samples.begin(), samples.end(), first);
    return samples;
}

TEST(RingBuffer, HoldsAtLeastOneSample) {
    for (const std::int64_t requested : {-5L, 0L, 1L})
        EXPECT_EQ(RingBuffer(requested).capacity(), 1U) << requested;
}

TEST(RingBuffer, DropsTheNewestWhenFullAndPlaysSilenceWhenShortLikeAQueue) {
    test::Random random(11);
    RingBuffer ring(37);
    baseline::PlainRing plain(37);
    float next = 0.0F;
    for (int step = 0; step < 5000; ++step) {
        const auto count = static_cast<std::size_t>(test::wholeBetween(random, 0, 50));
        if (test::oneIn(random, 2)) {
            const std::vector<float> samples = ramp(count, next);
            next += static_cast<float>(count);
            ASSERT_EQ(ring.write(samples), plain.write(samples)) << "step " << step;
        } else {
            std::vector<float> samples(count, 99.0F);
            std::vector<float> expected(count, 99.0F);
            ASSERT_EQ(ring.read(samples), plain.read(expected)) << "step " << step;
            ASSERT_EQ(samples, expected) << "step " << step;
        }
    }
}

TEST(RingBuffer, KeepsTheOrderBetweenTwoThreads) {
    constexpr std::size_t total = 200000;
    RingBuffer ring(256);
    std::thread producer([&ring] {
        std::size_t sent = 0;
        while (sent < total) {
            const std::vector<float> block =
                ramp(std::min<std::size_t>(64, total - sent), static_cast<float>(sent));
            const test::AllocationGuard guard;
            sent += ring.write(block);
        }
    });
    std::size_t received = 0;
    std::size_t outOfOrder = 0;
    std::vector<float> block(48);
    while (received < total) {
        const test::AllocationGuard guard;
        const std::size_t count = ring.read(block);
        for (std::size_t i = 0; i < count; ++i)
            outOfOrder += block[i] == static_cast<float>(received + i) ? 0 : 1;
        received += count;
    }
    producer.join();
    EXPECT_EQ(outOfOrder, 0U);
}

} // namespace
