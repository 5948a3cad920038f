#include "machine/forced_end.h"
#include "machine/signals.h"
#include "platform/base/planar_blocks.h"
#include "platform/virtual/output_recorder.h"
#include "support/server_process.h"
#include "support/sound_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <functional>

namespace {

using namespace orvane;
using machine::EndDeadline;

/// The exit code of a child process that hangs after `work`.
int exitCodeOfHangingChild(const std::function<void()>& work) {
    return test::exitCodeOfChild([&work] {
        work();
        while (true)
            ::pause();
    });
}

TEST(ForcedEnd, CompletesTheRecordingOfAProgramThatHangs) {
    const test::TemporaryFolder folder;
    constexpr std::size_t frames = 4800;
    const int exitCode = exitCodeOfHangingChild([&folder] {
        static platform::virtual_devices::OutputRecorder recorder(folder / "mix.wav", 2, 48000.0);
        if (!recorder.start(platform::virtual_devices::VirtualPacing::live)) ::_exit(2);
        recorder.take(platform::PlanarBlocks(2, frames).readable(frames));
        static machine::InterruptGuard guard;
        std::raise(SIGINT);
        std::raise(SIGINT);
    });
    EXPECT_EQ(exitCode, EXIT_FAILURE);
    EXPECT_EQ(test::readSound(folder / "mix.wav").at(0).size(), frames);
}

TEST(ForcedEnd, HappensAtTheDeadlineUnlessTheDeadlineIsDestroyed) {
    static EndDeadline deadline;
    EXPECT_EQ(exitCodeOfHangingChild([] { deadline.arm(7, std::chrono::seconds(0)); }), 7);
    EndDeadline().arm(7);
}

} // namespace
