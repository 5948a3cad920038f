#include "cli/render.h"
#include "engine/session/channel_strip.h"
#include "engine/session/mixer_json_document.h"
#include "support/build_files.h"
#include "support/program.h"
#include "support/sound_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

// The bits of a mix of the demo panel. They are the same for every compiler and processor and must not change
// with the code.

namespace {

using namespace orvane;
namespace output = session::output;

/// The SHA-256 of all samples, frame by frame; fails if they are silence.
std::string hashOf(const std::filesystem::path& sound, const test::TemporaryFolder& folder) {
    const test::Channels channels = test::readSound(sound);
    std::string bytes;
    for (std::size_t frame = 0; frame < channels.front().size(); ++frame)
        for (const std::vector<float>& channel : channels)
            bytes.append(reinterpret_cast<const char*>(&channel[frame]), sizeof(float));
    for (const std::vector<float>& channel : channels)
        EXPECT_GT(std::ranges::max(channel), 0.25F) << sound << " is silent";
    const std::string samples = folder.add("samples", bytes).string();
    EXPECT_EQ(test::exitCodeOfShell(folder, "sha256sum '" + samples + "'"), 0);
    return test::contentOf(folder / "stdout").substr(0, 64);
}

/// A mixer with default settings, a strip for every microphone and the master on the first outputs.
session::MixerDocumentData plainSession() {
    std::vector<session::ChannelStrip> strips = session::makeDefaultStrips(8);
    for (std::size_t i = 0; i < strips.size(); ++i)
        strips[i].inputChannelIndex = static_cast<std::int64_t>(i);
    return {
        .channels = session::settingsOf(strips),
        .master = {.masterOutputRouting = session::master_output::Stereo{0, 1}},
        .bufferSize = 512};
}

/// A mixer with all settings that affect the sound changed.
session::MixerDocumentData richSession() {
    session::MixerDocumentData document = plainSession();
    document.master.levels.masterTargetDB = -18.5;
    document.bufferSize = 96;
    document.master.levels.leadGroupGainDB = 2.5;
    document.master.levels.backingGroupGainDB = -4.25;
    document.master.referenceNoiseGain = 0.03;
    document.master.duckerReleaseMs = 230.0;
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

TEST(GoldenRender, MatchesTheStoredHashes) {
    const std::tuple<std::string, session::MixerDocumentData, const char*> mixes[] = {
        {"plain", plainSession(), "37f371da5f352e88222fadf44f345c54f9910b0c258d9b9566f0027919fcbf76"},
        {"rich", richSession(), "5dd6ffb93c7318c7d77072388989d93ae03020efddb444a06387a20e1ecdb43a"}};
    const test::TemporaryFolder folder;
    for (const auto& [name, document, hash] : mixes) {
        const auto session = folder / (name + ".orvane");
        const auto sound = folder / (name + ".wav");
        ASSERT_TRUE(session::MixerJSONDocument{document}.write(session));
        ASSERT_TRUE(cli::render(
            {.input = test::panelRecording(), .output = sound, .session = session},
            {.warn = [](std::string_view sentence) { ADD_FAILURE() << sentence; },
             .progress = [](double) {},
             .isCancelled = [] { return false; }}
        ));
        EXPECT_EQ(hashOf(sound, folder), hash) << name;
    }
}

} // namespace
