#include "support/build_files.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/program.h"
#include "support/server_process.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <jack/jack.h>

#include <csignal>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::test;
using testing::HasSubstr;
using Sizes = std::vector<std::uint32_t>;

const std::string program = orvane::test::builtProgram("orvane-cli");

/// Another client of the server, which records every change of the buffer size.
class SizeObserver final {
  public:
    SizeObserver()
        : client(
            jack_client_open(orvane::test::uniqueJackName("sizes").c_str(), JackNoStartServer, nullptr),
            jack_client_close
        ) {
        const auto note = [](jack_nframes_t frames, void* self) {
            auto& observer = *static_cast<SizeObserver*>(self);
            const std::scoped_lock lock(observer.mutex);
            observer.sizes.push_back(frames);
            return 0;
        };
        jack_set_buffer_size_callback(client.get(), note, this);
        jack_activate(client.get());
        take();
    }

    /// The changes since the last call.
    Sizes take() {
        const std::scoped_lock lock(mutex);
        return std::exchange(sizes, {});
    }

    bool awaitChange() {
        return waitFor([this] {
            const std::scoped_lock lock(mutex);
            return !sizes.empty();
        });
    }

    void change(std::uint32_t frames) { jack_set_buffer_size(client.get(), frames); }

  private:
    std::mutex mutex;
    Sizes sizes;
    std::unique_ptr<jack_client_t, decltype(&jack_client_close)> client;
};

/// Starts a run that sets the server's buffer size to 128 frames and writes its meters to a file.
pid_t startRun(const std::string& meters = "/dev/null") {
    const std::string command =
        "ORVANE_DRIVERS=jack exec '" + program + "' run --buffer-size 128 --meters json >'" + meters + "'";
    return orvane::test::startServer({"sh", "-c", command});
}

/// Waits for the first meters, which show that the mix runs.
bool awaitMeters(const std::string& meters) {
    return waitFor([&] { return !contentOf(meters).empty(); });
}

using JackRun = ProgramTest;

TEST_F(JackRun, UsesTheServersBufferSizeAndRestoresIt) {
    const JackTestServer server({.period = 64});
    SizeObserver observer;
    const auto session = folder.add(
        "show.orvane", R"({"channels": [], "masterTargetDB": -12, "bufferSize": 1024, "snapshots": []})"
    );
    const auto run = [&](const std::string& options) {
        const std::string command = "ORVANE_DRIVERS=jack " + program + " run --meters none --seconds 0.1 ";
        EXPECT_EQ(exitCodeOfShell(command + options), 0) << errors();
        return observer.take();
    };
    EXPECT_EQ(run(""), Sizes{});
    EXPECT_EQ(run("--buffer-size 128"), (Sizes{128, 64}));
    EXPECT_EQ(run("--channels 1 --session " + session.string()), (Sizes{1024, 64}));
    observer.change(48);
    observer.take();
    EXPECT_EQ(run(""), (Sizes{512, 48})) << "is not offered";
}

TEST_F(JackRun, RestoresTheBufferSizeAtEverySignalUnlessAnotherProgramChangedIt) {
    const JackTestServer server({.period = 64});
    SizeObserver observer;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t run = startRun();
        ASSERT_TRUE(observer.awaitChange());
        ::kill(run, signal);
        EXPECT_EQ(exitCodeOf(run), 0) << signal;
        EXPECT_EQ(observer.take(), (Sizes{128, 64})) << signal;
    }
    const std::string meters = (folder / "meters").string();
    const pid_t run = startRun(meters);
    ASSERT_TRUE(awaitMeters(meters));
    observer.change(256);
    ::kill(run, SIGTERM);
    EXPECT_EQ(exitCodeOf(run), 0);
    EXPECT_EQ(observer.take(), (Sizes{128, 256}));
}

TEST_F(JackRun, FailsIfItsServerDies) {
    JackTestServer server({.period = 64});
    const std::string meters = (folder / "meters").string();
    const pid_t run = startRun(meters);
    ASSERT_TRUE(awaitMeters(meters));
    server.end(SIGKILL);
    EXPECT_EQ(exitCodeOf(run), 1);
}

TEST_F(JackRun, ReportsThatTheServerHasNoPortsLeft) {
    const JackTestServer server({.period = 64, .channelCount = 20}, 64);
    SizeObserver observer;
    EXPECT_EQ(exitCodeOfShell("ORVANE_DRIVERS=jack " + program + " run --buffer-size 128 --meters none"), 1);
    EXPECT_THAT(
        errors(),
        HasSubstr("orvane-cli: system: Failed to start audio engine: AudioUnitInitialize failed: OSStatus "
                  "2003329396. The JACK server has no ports left; ")
    );
    EXPECT_EQ(observer.take(), (Sizes{128, 64}));
}

} // namespace
