#include "audio/ring_buffer.h"
#include "support/allocation_guard.h"

#include <gtest/gtest.h>

#include <numeric>
#include <thread>
#include <vector>

namespace {

using namespace orvane;
using audio::RingBuffer;

TEST(RingBuffer, HoldsAtLeastOneSample) {
    for (const std::int64_t requested : {-5L, 0L, 1L})
        EXPECT_EQ(RingBuffer(requested).capacity(), 1U) << requested;
}

TEST(RingBuffer, KeepsTheOrderBetweenTwoThreads) {
    constexpr std::size_t total = 200000;
    RingBuffer ring(256);
    std::thread producer([&ring] {
        std::size_t sent = 0;
        while (sent < total) {
            std::vector<float> block(std::min<std::size_t>(64, total - sent));
            std::iota(block.begin(), block.end(), static_cast<float>(sent));
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
