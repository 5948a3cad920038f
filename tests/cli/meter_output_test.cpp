#include "cli/meter_output.h"

#include "platform/base/file_descriptor.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string>

namespace {

using orvane::cli::MeterOutput;
using orvane::platform::FileDescriptor;

TEST(MeterOutput, WritesAWholeFrameToAPipeInParts) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
    const FileDescriptor readEnd(ends[0]);
    const FileDescriptor writeEnd(ends[1]);
    // Larger than the default capacity of any pipe.
    std::string frame(1'000'000, 'm');
    frame.back() = '\n';
    MeterOutput output(writeEnd.number());
    ASSERT_TRUE(output.write(frame));
    std::string received;
    const auto receive = [&] {
        std::array<char, 4096> part{};
        const ssize_t length = ::read(readEnd.number(), part.data(), part.size());
        if (length > 0) received.append(part.data(), static_cast<std::size_t>(length));
    };
    while (!output.write("end"))
        receive();
    while (!received.ends_with("end"))
        receive();
    EXPECT_EQ(received.size(), frame.size() + 3);
    EXPECT_TRUE(received.starts_with(frame));
    EXPECT_EQ(output.error(), 0);
}

} // namespace
