#include "platform/lv2/message_ring.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <span>
#include <thread>
#include <vector>

namespace orvane::platform::lv2 {
namespace {

TEST(MessageRing, CarriesMessagesOfAnySizeInOrderBetweenTwoThreads) {
    const auto ring = std::make_unique<MessageRing>();
    const auto message = std::make_unique<MessageRing::Message>();
    constexpr std::size_t count = 20000;
    // Sizes that put the end of each message at another place of the ring, including empty ones.
    const auto sizeOf = [](std::size_t i) { return i * 37 % 3000; };

    std::thread writer([&] {
        for (std::size_t i = 0; i < count; ++i) {
            const std::vector<std::byte> bytes(sizeOf(i), static_cast<std::byte>(i));
            while (!ring->write(bytes))
                std::this_thread::yield();
        }
    });
    bool isIntact = true;
    for (std::size_t i = 0; i < count; ++i) {
        std::optional<std::size_t> size;
        while (!(size = ring->take(*message)))
            std::this_thread::yield();
        isIntact = isIntact && *size == sizeOf(i);
        for (const std::byte byte : std::span(message->bytes).first(*size))
            isIntact = isIntact && byte == static_cast<std::byte>(i);
    }
    writer.join();
    EXPECT_TRUE(isIntact);
}

TEST(MessageRing, AcceptsAMessageWholeOrNotAtAll) {
    const auto ring = std::make_unique<MessageRing>();
    const auto message = std::make_unique<MessageRing::Message>();
    const std::vector<std::byte> tooLarge(MessageRing::capacity);
    EXPECT_FALSE(ring->write(tooLarge));
    EXPECT_FALSE(ring->take(*message));
    EXPECT_TRUE(ring->write(std::span(tooLarge).first(MessageRing::capacity - 4)));
    EXPECT_FALSE(ring->write({}));
    EXPECT_EQ(ring->take(*message), MessageRing::capacity - 4);
    EXPECT_TRUE(ring->write({}));
}

} // namespace
} // namespace orvane::platform::lv2
