#include "cli/render.h"
#include "engine/session/channel_strip.h"
#include "engine/session/mixer_json_document.h"
#include "platform/sound_file_reader.h"
#include "support/build_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <ranges>
#include <string>
#include <vector>

// What a mix of the demo panel has always been, bit for bit: whatever makes the mixer faster or tidier,
// builds it with another compiler or runs it on another processor leaves these alone.

namespace {

using namespace orvane;
namespace output = session::output;

/// Of all samples, channel by channel: FNV-1a, 64 bits, a sample at a time.
std::uint64_t hashOf(const std::filesystem::path& sound) {
    platform::SoundFileReader reader = platform::SoundFileReader::open(sound).value();
    const auto frames = static_cast<std::size_t>(reader.frameCount());
    std::vector channels(reader.channelCount(), std::vector<float>(frames));
    const std::vector<std::span<float>> views(channels.begin(), channels.end());
    EXPECT_EQ(reader.read(views).value(), frames);
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const float sample : channels | std::views::join)
        hash = (hash ^ std::bit_cast<std::uint32_t>(sample)) * 0x100000001B3U;
    return hash;
}

/// A mixer as it comes, with the master on its first outputs.
session::MixerDocumentData plainSession() {
    return {
        .channels = session::settingsOf(session::makeDefaultStrips(8)),
        .masterTargetDB = -10.0,
        .bufferSize = 512,
        .masterOutputRouting = session::master_output::Stereo{0, 1}};
}

/// Everything set that makes a difference to the sound.
session::MixerDocumentData richSession() {
    session::MixerDocumentData document = plainSession();
    document.masterTargetDB = -18.5;
    document.bufferSize = 96;
    document.leadGroupGainDB = 2.5;
    document.backingGroupGainDB = -4.25;
    document.referenceNoiseGain = 0.03;
    document.duckerReleaseMs = 230.0;
    for (std::size_t i = 0; i < document.channels.size(); ++i) {
        session::ChannelSettingsData& channel = document.channels[i];
        const auto number = static_cast<double>(i);
        channel.genderMode = dsp::allGenderTriggerModes[i % 3];
        channel.vocalRole = dsp::allVocalRoles[i / 2 % 3];
        channel.trim = 0.5 + number / 5.0;
        channel.outputRouting = output::Stereo{2, 3, number / 3.5 - 1.0};
    }
    document.channels[5].bypassed = true;
    document.channels[6].muted = true;
    return document;
}

TEST(GoldenRender, GivesTheBitsItAlwaysGave) {
    struct Golden {
        const char* name;
        session::MixerDocumentData session;
        std::uint64_t hash;
    };
    const Golden mixes[] = {
        {"plain", plainSession(), 15789871962179584805U}, {"rich", richSession(), 703658937237922597U}};
    const test::TemporaryFolder folder;
    for (const Golden& mix : mixes) {
        const auto session = folder / (std::string(mix.name) + ".orvane");
        const auto sound = folder / (std::string(mix.name) + ".wav");
        ASSERT_TRUE(session::MixerJSONDocument{mix.session}.write(session));
        ASSERT_TRUE(cli::render(
            {.input = test::panelRecording(), .output = sound, .session = session},
            {.warn = [](std::string_view sentence) { ADD_FAILURE() << sentence; },
             .progress = [](double) {},
             .isCancelled = [] { return false; }}
        ));
        EXPECT_EQ(hashOf(sound), mix.hash) << mix.name;
    }
}

} // namespace
