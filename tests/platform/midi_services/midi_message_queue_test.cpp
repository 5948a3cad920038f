#include "platform/midi_services/midi_message_queue.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

using orvane::platform::MIDIMessageQueue;

TEST(MIDIMessageQueue, AcceptsALongMessageWholeOrNotAtAll) {
    constexpr std::size_t longestPiece = 31;
    MIDIMessageQueue queue;
    std::vector<std::uint8_t> exclusive(4 * longestPiece);
    std::iota(exclusive.begin(), exclusive.end(), std::uint8_t{1});
    const std::vector<std::uint8_t> note{0x90, 0x3C, 0x64};
    std::vector<std::uint8_t> expected;
    const auto pushed = [&](const std::vector<std::uint8_t>& message) {
        if (!queue.push(message)) return false;
        expected.insert(expected.end(), message.begin(), message.end());
        return true;
    };
    ASSERT_TRUE(pushed(note));
    while (pushed(exclusive)) {
    }
    while (pushed(note)) {
    }
    std::vector<std::uint8_t> taken;
    MIDIMessageQueue::Piece piece;
    const auto take = [&] {
        if (queue.pop({&piece, 1}) == 0) return false;
        taken.insert(taken.end(), piece.data().begin(), piece.data().end());
        return true;
    };
    // The queue has room for three of the four pieces.
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(take());
    EXPECT_FALSE(pushed(exclusive));
    ASSERT_TRUE(take());
    EXPECT_TRUE(pushed(exclusive));
    while (take()) {
    }
    EXPECT_EQ(taken, expected);
}

} // namespace
