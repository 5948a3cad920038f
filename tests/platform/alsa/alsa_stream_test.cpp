#include "support/allocation_guard.h"
#include "support/alsa_fixture.h"
#include "support/change_log.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <random>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::alsa;
using namespace orvane::test;
using testing::ElementsAre;

/// Runs the device for the cycles that the client awaits.
void run(AudioStream& stream, AlsaClient& client) {
    ASSERT_EQ(stream.start(), noErr);
    client.waitForCycles();
    stream.stop();
}

/// Samples that every format can represent, in the format's bytes.
std::string anySamples(const std::string& format, std::size_t count) {
    std::mt19937 random(7);
    std::string bytes;
    const auto add = [&](auto value, std::size_t size) {
        bytes.append(reinterpret_cast<const char*>(&value), size);
    };
    for (std::size_t i = 0; i < count; ++i) {
        const auto sample = static_cast<std::int16_t>(random());
        if (format == "S16_LE") add(sample, 2);
        if (format == "S24_LE") add(sample * 256, 4);
        if (format == "S24_3LE") add(sample * 256, 3);
        if (format == "S32_LE") add(sample * 65536, 4);
        if (format == "FLOAT_LE") add(static_cast<float>(sample) / 32768.0F, 4);
    }
    return bytes;
}

/// The bytes a device plays if its client passes its input through.
std::string bytesPlayed(const std::string& hardware, const std::string& bytesHeard, std::size_t cycles) {
    AlsaFixture driver(
        "pcm.device.type asym\n"
        "pcm.device.playback.pcm { type file format raw file FOLDER/out slave.pcm { "
        + hardware
        + " } }\n"
          "pcm.device.capture.pcm { type file format raw file /dev/null infile FOLDER/in slave.pcm { "
        + hardware + " } }\n"
    );
    driver.folder.add("in", bytesHeard);
    AlsaClient client(cycles, [](auto inputs, auto outputs, std::size_t) {
        for (std::size_t channel = 0; channel < outputs.size(); ++channel)
            std::ranges::copy(inputs[channel], outputs[channel].begin());
    });
    run(*driver->open(scriptedUID, true, client).value(), client);
    return contentOf(driver.folder / "out");
}

TEST(AlsaStream, PassesEverySampleThroughInEveryFormat) {
    constexpr std::size_t period = 64;
    constexpr std::size_t cycles = 24;
    for (const std::string format : {"S16_LE", "S24_LE", "S24_3LE", "S32_LE", "FLOAT_LE"})
        for (const std::size_t channels : {1, 2, 18})
            for (const std::string access :
                 {"RW_INTERLEAVED", "RW_NONINTERLEAVED", "MMAP_INTERLEAVED", "MMAP_NONINTERLEAVED"}) {
                SCOPED_TRACE(format + ", " + std::to_string(channels) + " channels, " + access);
                const std::string heard = anySamples(format, cycles * period * channels);
                const std::string played = bytesPlayed(
                    "type scripted format " + format + " channels " + std::to_string(channels) + " access "
                        + access + " period " + std::to_string(period),
                    heard, cycles
                );
                const std::size_t periodBytes = heard.size() / cycles;
                const std::string expected = std::string(2 * periodBytes, '\0') + heard;
                // The file lags behind by up to two buffers.
                ASSERT_GE(played.size(), expected.size() - 4 * periodBytes);
                const std::size_t common = std::min(played.size(), expected.size());
                ASSERT_EQ(
                    std::ranges::mismatch(played, expected).in1 - played.begin(), static_cast<long>(common)
                ) << "byte that differs";
            }
}

TEST(AlsaStream, RunsADeviceOfOneDirection) {
    AlsaFixture driver(R"(
        pcm.speakers { type asym playback.pcm { type scripted channels 6 } }
        pcm.microphones { type asym capture.pcm { type scripted channels 4 } }
        pcm.both { type asym playback.pcm { type scripted channels 6 } capture.pcm { type scripted channels 4 } }
    )");
    const std::tuple<std::string_view, bool, std::size_t, std::size_t> cases[] = {
        {"alsa:speakers", true, 0, 6}, {"alsa:microphones", true, 4, 0}, {"alsa:both", false, 0, 6}};
    for (const auto& [name, enableInput, inputs, outputs] : cases) {
        std::array<std::size_t, 3> seen{};
        AlsaClient client(8, [&](auto in, auto out, std::size_t frames) {
            seen = {in.size(), out.size(), frames};
        });
        const auto stream = driver->open(name, enableInput, client);
        ASSERT_TRUE(stream) << name;
        run(*stream.value(), client);
        EXPECT_THAT(seen, ElementsAre(inputs, outputs, 64)) << name;
    }
}

TEST(AlsaStream, NeitherAllocatesNorFreesWhileItRuns) {
    AlsaFixture driver("pcm.device { type scripted channels 8 error 32 errorAfter 40 }");
    std::optional<AllocationGuard> guard;
    std::size_t cycle = 0;
    AlsaClient client(100, [&](auto, auto, std::size_t) {
        if (++cycle == 2) guard.emplace();
        if (cycle == 90) guard.reset();
    });
    const auto stream = driver->open(scriptedUID, true, client);
    run(*stream.value(), client);
    EXPECT_GE(stream.value()->xrunCount(), 1);
}

TEST(AlsaStream, ContinuesAfterErrorsThatADeviceRecoversFromAndASlowStart) {
    const std::tuple<const char*, std::string, std::string, std::uint32_t> cases[] = {
        {"lost samples on input", "", "error 32 errorAfter 5", 1},
        {"lost samples on output", "error 32 errorAfter 5", "", 1},
        {"suspended", "error 86 errorAfter 5", "", 1},
        {"slow to start", "", "startDelay 300", 0}};
    for (const auto& [what, playback, capture, xruns] : cases) {
        AlsaFixture driver(
            "pcm.device { type asym playback.pcm { type scripted " + playback
            + " } capture.pcm { type scripted " + capture + " } }"
        );
        AlsaClient client(20);
        const auto stream = driver->open(scriptedUID, true, client);
        run(*stream.value(), client);
        EXPECT_EQ(stream.value()->xrunCount(), xruns) << what;
    }
}

TEST(AlsaStream, KeepsRunningADeviceWhoseCyclesAreAlwaysLate) {
    // After two periods of silence, each period is late.
    AlsaFixture driver(R"(
        pcm.device {
            type asym
            playback.pcm { type scripted error 32 errorAfter 2 errorEvery 3 errorCount 1000 }
            capture.pcm { type scripted }
        }
    )");
    ChangeLog log;
    const auto watch = driver->watch(scriptedUID, log.listener());
    AlsaClient client(30);
    const auto stream = driver->open(scriptedUID, true, client);
    ASSERT_EQ(stream.value()->start(), noErr);
    EXPECT_TRUE(waitFor([&] { return client.cycleCount() >= 30 || !log.get().empty(); }));
    stream.value()->stop();
    EXPECT_TRUE(log.get().empty());
    EXPECT_GE(client.cycleCount(), 30);
    EXPECT_GE(stream.value()->xrunCount(), 29);
}

TEST(AlsaStream, QueuesThreePeriodsOnUSBCardsAndTwoOnOthers) {
    constexpr std::size_t periodBytes = std::size_t{64} * 2 * 4;
    for (const bool isUsb : {true, false}) {
        AlsaFixture driver(
            "pcm.hw { @args [ CARD DEV ] @args.CARD.type string @args.DEV.type string\n"
            "type file format raw file FOLDER/out slave.pcm { type scripted periods 4 } }\n",
            {"hw:CARD=X32,DEV=0"}
        );
        driver.showCard(1, "X32", isUsb ? "usbid" : "id", "any");
        AlsaClient client(24, [](auto, auto outputs, std::size_t) {
            for (const auto& output : outputs)
                std::ranges::fill(output, 0.5F);
        });
        const auto stream = driver->open("alsa:hw:CARD=X32,DEV=0", false, client);
        ASSERT_TRUE(stream);
        run(*stream.value(), client);
        const std::string played = contentOf(driver.folder / "out");
        const std::size_t silence = played.find_first_not_of('\0');
        EXPECT_EQ(silence / periodBytes, isUsb ? 3 : 2);
    }
}

struct Lender final : PriorityLender {
    int lend(pid_t thread) override {
        calls.emplace_back(thread, ::gettid());
        return 20;
    }
    int obtainable() override { return 20; }
    /// The thread that is given priority, and the thread that asks.
    std::vector<std::pair<pid_t, pid_t>> calls;
};

TEST(AlsaStream, BorrowsPriorityIfItsThreadMayNotRaiseIt) {
    Lender lender;
    AlsaFixture driver("pcm.device { type scripted }", {"device"}, {}, &lender);
    rlimit before{};
    getrlimit(RLIMIT_RTPRIO, &before);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_RTPRIO, &none);
    // The privileges are dropped on a thread of its own; the I/O thread inherits that.
    std::thread([&] {
        __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
        __user_cap_data_struct noCapabilities[_LINUX_CAPABILITY_U32S_3] = {};
        ASSERT_EQ(syscall(SYS_capset, &header, noCapabilities), 0);
        std::atomic<pid_t> ioThread = 0;
        AlsaClient client(1, [&](auto, auto, std::size_t) { ioThread = ::gettid(); });
        const auto stream = driver->open(scriptedUID, true, client);
        ASSERT_EQ(stream.value()->start(), noErr);
        client.waitForCycles();
        EXPECT_THAT(lender.calls, ElementsAre(std::pair(ioThread.load(), ::gettid())));
        EXPECT_EQ(stream.value()->realtimePriority(), 20);
        stream.value()->stop();
        EXPECT_EQ(stream.value()->realtimePriority(), 0);
    }).join();
    setrlimit(RLIMIT_RTPRIO, &before);
}

TEST(AlsaStream, ReportsADeviceThatDies) {
    const std::pair<std::string, std::string> cases[] = {
        {"unplugged", "type scripted error 19 errorAfter 8"},
        {"failing for good", "type scripted error 5 errorAfter 8 errorCount 1000"},
        {"fallen silent", "type scripted silentAfter 8"},
        {"writing where nothing fits", "type file format raw file /dev/full slave.pcm { type scripted }"}};
    for (const auto& [what, definition] : cases) {
        SCOPED_TRACE(what);
        AlsaFixture driver("pcm.device { " + definition + " }");
        ChangeLog log;
        const auto watch = driver->watch(scriptedUID, log.listener());
        AlsaClient client(1);
        const auto stream = driver->open(scriptedUID, true, client);
        ASSERT_TRUE(stream);
        ASSERT_EQ(stream.value()->start(), noErr);
        EXPECT_THAT(log.waitFor(1), ElementsAre(AudioDeviceChange::died));
        const std::size_t cycles = client.cycleCount();
        stream.value()->stop();
        EXPECT_EQ(client.cycleCount(), cycles);
        EXPECT_EQ(stream.value()->realtimePriority(), 0);
    }
}

TEST(AlsaStream, StartsStopsAndClosesRepeatedly) {
    AlsaFixture driver("pcm.device { type scripted exclusive 1 }");
    for (int round = 0; round < 20; ++round) {
        AlsaClient client(3);
        const auto stream = driver->open(scriptedUID, round % 2 == 0, client);
        ASSERT_TRUE(stream) << "round " << round;
        for (int start = 0; start < round % 3; ++start)
            run(*stream.value(), client);
        EXPECT_EQ(stream.value()->start(), noErr);
        EXPECT_EQ(stream.value()->start(), noErr);
    }
}

} // namespace
