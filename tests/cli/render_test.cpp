#include "cli/render.h"
#include "dsp/decibels.h"
#include "engine/session/mixer_json_document.h"
#include "platform/lv2/lv2_unit_host.h"
#include "plugins/insert_components.h"
#include "support/build_files.h"
#include "support/file_size_limit.h"
#include "support/random_blocks.h"
#include "support/scripted_plugin.h"
#include "support/sound_files.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace test;
using cli::RenderOptions;
using testing::ElementsAre;
using testing::HasSubstr;
namespace output = session::output;
namespace master_output = session::master_output;

const std::string panel = test::panelRecording();

/// A render with its warnings and its progress.
struct Rendering {
    explicit Rendering(
        const RenderOptions& options, const std::function<bool()>& isCancelled = [] { return false; }
    )
        : report(cli::render(
            options, {.warn = [this](std::string_view sentence) { warnings.emplace_back(sentence); },
                      .progress = [this](double share) { progress.push_back(share); },
                      .isCancelled = isCancelled}
        )) {}

    std::vector<std::string> warnings;
    std::vector<double> progress;
    platform::Result<cli::RenderReport> report;
};

/// A session of bypassed strips, so that routed sound stays unchanged.
session::MixerDocumentData bypassedSession(const std::vector<session::OutputRouting>& outputs) {
    session::MixerDocumentData document{.bufferSize = 64};
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        session::ChannelStrip strip = session::ChannelStrip::make(
            platform::Uuid::random(), "Mic/" + std::to_string(i + 1), static_cast<std::int64_t>(i),
            std::nullopt
        );
        strip.bypassed = true;
        strip.outputRouting = outputs[i];
        document.channels.push_back(strip.settings());
    }
    return document;
}

class Render : public testing::Test {
  protected:
    [[nodiscard]] std::filesystem::path
    writeSession(const session::MixerDocumentData& document, const char* name = "show.orvane") const {
        EXPECT_TRUE(session::MixerJSONDocument{document}.write(folder / name));
        return folder / name;
    }

    /// The report of a render; `text`: also receives the report for people.
    [[nodiscard]] nlohmann::json reportOf(const Channels& input, std::string* text = nullptr) const {
        const Rendering rendering(
            {.input = writeSound(folder / "in.wav", input),
             .output = folder / "out.wav",
             .report = folder / "report.json"}
        );
        EXPECT_TRUE(rendering.report);
        if (text != nullptr) *text = rendering.report.value().text();
        return nlohmann::json::parse(contentOf(folder / "report.json"));
    }

    const TemporaryFolder folder;
};

TEST_F(Render, AlignsOutputsAndStemsWithTheInputToTheLastFrame) {
    Channels input(2, std::vector<float>(101, 0.0F));
    input[0][0] = 0.5F;
    input[1][100] = -0.25F;
    const Rendering rendering(
        {.input = writeSound(folder / "in.wav", input),
         .output = folder / "out.wav",
         .session = writeSession(bypassedSession({output::Mono{3}, output::Mono{0}})),
         .stems = folder / "stems"}
    );
    ASSERT_TRUE(rendering.report) << rendering.report.error().description;
    const std::vector<float> silence(101, 0.0F);
    EXPECT_EQ(readSound(folder / "out.wav"), (Channels{input[1], silence, silence, input[0]}));
    EXPECT_EQ(readSound(folder / "stems/01 Mic_1.wav")[0], input[0]);
    EXPECT_EQ(readSound(folder / "stems/02 Mic_2.wav")[0], input[1]);
    EXPECT_EQ(rendering.report.value().blocks, 2U);
    EXPECT_THAT(rendering.progress, ElementsAre(0.0, 64.0 / 101.0));
}

TEST_F(Render, StaysAlignedIfTheLimiterDelaysSomeOutputs) {
    session::MixerDocumentData document = bypassedSession({output::Mono{3}, output::Mono{0}});
    document.master.masterOutputRouting = session::master_output::Stereo{0, 1};
    Channels input(2, std::vector<float>(5000));
    test::Random random(1);
    for (std::vector<float>& channel : input)
        test::fillWithSignal(random, std::span(channel));
    const auto renderWith = [&](std::optional<double> ceiling) {
        const Rendering rendering(
            {.input = writeSound(folder / "in.wav", input),
             .output = folder / "out.wav",
             .session = writeSession(document),
             .outputOverrides = {.leveler = dsp::LevelerMode::off, .limiterCeilingDBTP = ceiling},
             .stems = folder / "stems"}
        );
        EXPECT_TRUE(rendering.report) << rendering.report.error().description;
        EXPECT_EQ(readSound(folder / "stems/01 Mic_1.wav")[0], input[0]);
        return readSound(folder / "out.wav");
    };
    const Channels plain = renderWith(std::nullopt);
    const Channels limited = renderWith(-20.0);
    EXPECT_EQ(limited[3], plain[3]);
    ASSERT_EQ(limited[1].size(), plain[1].size());
    // Where the limited output does not have the samples of the plain one, it is lower.
    for (std::size_t i = 0; i < plain[1].size(); ++i)
        ASSERT_LE(std::abs(limited[1][i]), std::abs(plain[1][i]) + 1e-9F) << i;
}

TEST_F(Render, HandlesSessionsThatDoNotFitTheSound) {
    const Channels input(3, std::vector<float>(64, 0.125F));
    const auto sound = writeSound(folder / "in.wav", input);
    session::MixerDocumentData document = bypassedSession({output::Mono{0}, output::Stereo{4, 5, -1.0}});
    document.bufferSize = 100;
    document.channels[0].inputChannelIndex = 7;
    document.master.masterOutputRouting = master_output::Stereo{6, 7};
    const auto session = writeSession(document);

    const Rendering whole({.input = sound, .output = folder / "whole.wav", .session = session});
    ASSERT_TRUE(whole.report);
    EXPECT_EQ(whole.report.value().bufferSize, 512U);
    const Channels played = readSound(folder / "whole.wav");
    ASSERT_EQ(played.size(), 8U);
    EXPECT_EQ(played[0], std::vector<float>(64, 0.0F));
    EXPECT_EQ(played[4], std::vector<float>(64, 0.125F));
    EXPECT_TRUE(whole.warnings.empty());

    const Rendering cut(
        {.input = sound,
         .output = folder / "cut.wav",
         .session = session,
         .channels = 5,
         .outputs = 3,
         .bufferSize = 32}
    );
    ASSERT_TRUE(cut.report);
    EXPECT_EQ(cut.report.value().strips.size(), 5U);
    EXPECT_EQ(readSound(folder / "cut.wav"), Channels(3, std::vector<float>(64, 0.0F)));
    EXPECT_THAT(
        cut.warnings, ElementsAre(HasSubstr("Master Out was reset to \"None\""), HasSubstr("outputs up to 8"))
    );
}

TEST_F(Render, ReportsItsResults) {
    const Channels input = {std::vector<float>(96000, 0.25F), std::vector<float>(96000, 0.0F)};
    std::string text;
    const nlohmann::json report = reportOf(input, &text);
    EXPECT_EQ(report["seconds"], 2.0);
    EXPECT_EQ(report["blocks"], 188);
    EXPECT_NEAR(report["strips"][0]["finalGainDB"].get<double>(), 0.0, 1e-3);
    EXPECT_NEAR(report["strips"][1]["finalGainDB"].get<double>(), -25.0, 1.0);
    const double interval = report["gainIntervalSeconds"];
    EXPECT_NEAR(interval, 0.1, 0.01);
    for (const nlohmann::json& strip : report["strips"]) {
        const std::vector<double> gains = strip["gainsDB"];
        EXPECT_EQ(gains.size(), static_cast<std::size_t>(2.0 / interval));
        EXPECT_NEAR(gains.back(), strip["finalGainDB"].get<double>(), 0.5);
    }
    EXPECT_NEAR(report["strips"][0]["meanOutputLevelDB"].get<double>(), dsp::linearToDB(0.25), 0.2);
    EXPECT_NEAR(report["masterGainDB"].get<double>(), -10.0 - dsp::linearToDB(0.25), 0.1);
    EXPECT_LE(report["meanLoad"], report["peakLoad"]);
    EXPECT_THAT(text, HasSubstr("2.0 s in 188 blocks of 512 frames"));
}

TEST_F(Render, PadsTheLastBlockWithSilence) {
    // Long enough for every buffer to be filled with sound.
    Channels input(2, std::vector<float>(100 * 512 + 1, 0.25F));
    const nlohmann::json cutOff = reportOf(input);
    for (std::vector<float>& channel : input)
        channel.resize(101 * 512, 0.0F);
    const nlohmann::json padded = reportOf(input);
    for (const char* key : {"strips", "masterGainDB", "blocks"})
        EXPECT_EQ(cutOff[key], padded[key]);
}

TEST_F(Render, FailsWithOneSentenceAndLeavesNothingBehind) {
    const auto sound = writeSound(folder / "in.wav", Channels(1, std::vector<float>(64, 0.5F)));
    const auto far = writeSession(bypassedSession({output::Mono{1'000'000'000'000}}), "far.orvane");
    const auto empty = writeSession(bypassedSession({}), "empty.orvane");
    const auto session = writeSession(bypassedSession({output::Mono{0}}));
    const auto stem = writeSound(folder / "01 Mic_1.wav", Channels(1, std::vector<float>(64, 0.5F)));
    folder.add("bad.orvane", "{\"channels\": [}");
    folder.add("text.wav", "not a sound");
    const auto before = folder.names();

    const auto out = folder / "out.wav";
    const std::pair<RenderOptions, const char*> reasonByOptions[] = {
        {{.input = folder / "none.wav", .output = out}, "none.wav"},
        {{.input = folder / "text.wav", .output = out}, "text.wav"},
        {{.input = sound, .output = sound}, "in.wav cannot be written, because"},
        {{.input = sound, .output = out, .report = folder / "./in.wav"}, "in.wav"},
        {{.input = sound, .output = out, .session = session, .report = session}, "show.orvane"},
        {{.input = sound, .output = out, .report = out}, "out.wav"},
        {{.input = stem, .output = out, .session = session, .stems = folder / "."}, "01 Mic_1.wav"},
        {{.input = sound, .output = folder / "no/out.wav"}, "out.wav"},
        {{.input = sound, .output = out, .report = folder / "no/report.json"}, "report.json"},
        {{.input = sound, .output = out, .session = folder / "bad.orvane"},
         "Couldn't read that settings file: "},
        {{.input = sound, .output = out, .session = empty}, "has 0 channels"},
        {{.input = sound, .output = out, .session = far}, "output 1000000000001"},
        {{.input = sound, .output = out, .stems = folder / "text.wav"}, "text.wav"}};
    for (const auto& [options, reason] : reasonByOptions) {
        const Rendering rendering(options);
        ASSERT_FALSE(rendering.report) << reason;
        EXPECT_THAT(rendering.report.error().description, HasSubstr(reason));
        EXPECT_EQ(folder.names(), before) << reason;
    }
}

TEST_F(Render, UsesTheSessionsPluginsAndSkipsMissingOnes) {
    platform::SystemLog log([](const platform::LogLine&) {});
    platform::lv2::Lv2UnitHost host(log);
    const auto installed = plugins::availableInsertComponents(host);
    const auto dynamics = std::ranges::find(installed, "MDA Dynamics", &platform::AVAudioUnitComponent::name);
    ASSERT_NE(dynamics, installed.end());

    session::MixerJSONDocument document;
    for (int i = 0; i < 8; ++i) {
        session::ChannelStrip strip = session::ChannelStrip::make(platform::Uuid::random(), "Mic", i, {});
        strip.pluginSlots[0].pluginName = dynamics->name;
        strip.pluginSlots[0].component = plugins::identityOf(*dynamics);
        document.data.channels.push_back(strip.settings());
    }
    document.data.channels[5].pluginSlots[0].component->componentSubType = 1;
    document.data.pluginSlotRecallSafe = {true, false, false};
    document.data.master.masterOutputRouting = master_output::Stereo{0, 1};
    document.data.bufferSize = 256;
    const auto mix = [&](const char* name) {
        EXPECT_TRUE(document.write(folder / "show.orvane"));
        const Rendering rendering({.input = panel, .output = folder / name, .session = folder / "show.orvane"}
        );
        EXPECT_TRUE(rendering.report) << name;
        return rendering.warnings;
    };
    for (const char* name : {"first.wav", "second.wav"})
        EXPECT_THAT(
            mix(name),
            ElementsAre("Couldn't find installed plugin \"MDA Dynamics\" for Mic, slot 1 -- it may "
                        "not be installed on this computer.")
        );
    for (session::ChannelSettingsData& channel : document.data.channels)
        channel.pluginSlots[0] = session::PluginSlot::makeEmpty();
    EXPECT_THAT(mix("plain.wav"), testing::IsEmpty());
    EXPECT_EQ(contentOf(folder / "first.wav"), contentOf(folder / "second.wav"));
    EXPECT_NE(readSound(folder / "first.wav")[0], readSound(folder / "plain.wav")[0]);
}

TEST_F(Render, RunsPluginWorkersAtOnceAndOffline) {
    const test::Lv2Bundles bundles;
    bundles.add("amplifier.lv2", test::scriptedAmplifier());
    platform::SystemLog log([](const platform::LogLine&) {});
    platform::lv2::Lv2UnitHost host(log, bundles.searchPath());
    const auto amplifier = plugins::availableInsertComponents(host).at(0);
    session::MixerDocumentData document = bypassedSession({output::Mono{0}});
    document.channels[0].pluginSlots[0].pluginName = amplifier.name;
    document.channels[0].pluginSlots[0].component = plugins::identityOf(amplifier);
    const Channels input(1, std::vector<float>(6400, 0.0625F));

    ::setenv("LV2_PATH", bundles.searchPath().c_str(), 1);
    const Rendering rendering(
        {.input = writeSound(folder / "in.wav", input),
         .output = folder / "out.wav",
         .session = writeSession(document)}
    );
    ::unsetenv("LV2_PATH");
    ASSERT_TRUE(rendering.report) << rendering.report.error().description;
    EXPECT_THAT(rendering.warnings, testing::IsEmpty());
    // The warm-up block has already completed the plugin's background work.
    EXPECT_EQ(readSound(folder / "out.wav")[0], std::vector<float>(6400, 0.625F));
}

TEST_F(Render, ReportsErrorsMidwayAndLeavesNothingBehind) {
    const std::string whole = contentOf(panel);
    folder.add("half.flac", whole.substr(0, whole.size() / 2));
    const auto before = folder.names();
    const Rendering cutOff({.input = folder / "half.flac", .output = folder / "out.wav"});
    ASSERT_FALSE(cutOff.report);
    EXPECT_THAT(cutOff.report.error().description, HasSubstr("half.flac\" could not be read"));
    EXPECT_GT(cutOff.progress.size(), 1U);
    {
        const test::FileSizeLimit limit(200'000);
        const Rendering tooLong({.input = panel, .output = folder / "out.wav"});
        ASSERT_FALSE(tooLong.report);
        EXPECT_THAT(tooLong.report.error().description, HasSubstr("out.wav\" could not be written"));
    }
    EXPECT_EQ(folder.names(), before);
}

TEST_F(Render, KeepsTheOldFileIfCancelled) {
    folder.add("out.wav", "the last show");
    int blocks = 0;
    const Rendering rendering(
        {.input = panel, .output = folder / "out.wav", .stems = folder / "stems"},
        [&blocks] { return ++blocks > 20; }
    );
    ASSERT_FALSE(rendering.report);
    EXPECT_EQ(contentOf(folder / "out.wav"), "the last show");
    EXPECT_TRUE(std::filesystem::is_empty(folder / "stems"));
}

} // namespace
