#include "support/allocation_guard.h"
#include "support/alsa_fixture.h"
#include "support/change_log.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <optional>
#include <random>
#include <tuple>

namespace {

using namespace orvane::platform;
using orvane::test::AllocationGuard;
using orvane::test::AlsaClient;
using orvane::test::AlsaFixture;
using orvane::test::ChangeLog;
using orvane::test::contentOf;
using testing::ElementsAre;

constexpr std::string_view scriptedUID = "alsa:device";

/// Runs the device for as many cycles as the client awaits.
void run(AudioStream& stream, AlsaClient& client) {
    ASSERT_EQ(stream.start(), noErr);
    client.waitForCycles();
    stream.stop();
}

/// Samples that every format can carry, in the bytes of the format.
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

/// What a device is given to play whose client passes on what it hears.
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

TEST(AlsaStream, GoesOnAfterWhatADeviceRecoversFrom) {
    const std::pair<std::string, std::string> cases[] = {
        {"lost samples on input",
         "playback.pcm { type scripted } capture.pcm { type scripted error 32 errorAfter 5 }"},
        {"lost samples on output",
         "playback.pcm { type scripted error 32 errorAfter 5 } capture.pcm { type scripted }"},
        {"suspended", "playback.pcm { type scripted error 86 errorAfter 5 } capture.pcm { type scripted }"}};
    for (const auto& [what, sides] : cases) {
        AlsaFixture driver("pcm.device { type asym " + sides + " }");
        AlsaClient client(20);
        const auto stream = driver->open(scriptedUID, true, client);
        run(*stream.value(), client);
        EXPECT_EQ(stream.value()->xrunCount(), 1) << what;
    }
}

TEST(AlsaStream, TellsOfADeviceThatDies) {
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

TEST(AlsaStream, StartsStopsAndClosesAgainAndAgain) {
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
