#include "platform/lv2/lv2_unit_host.h"
#include "support/hosted_unit.h"
#include "support/lv2_bundles.h"
#include "support/no_sound.h"
#include "support/wait_for.h"

#include "scripted_host_test.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <atomic>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace orvane::platform::lv2 {
namespace {

using namespace test;
using testing::Each;
using testing::HasSubstr;

class Lv2UnitTest : public test::ScriptedHostTest {};

TEST_F(Lv2UnitTest, ReportsWhyAPluginCannotBeHosted) {
    const std::string plain = Lv2Bundles::plugin("urn:x", "X", "");
    const struct {
        std::string manifest;
        std::string sentence;
        bool isListed = false;
    } cases[] = {
        {plain, "plugin.so: file too short", true},
        {"<urn:x> a lv2:Plugin ; doap:name \"X\" ; lv2:port [ " + Lv2Bundles::audioPort(0, "Input")
             + " ] , [ " + Lv2Bundles::audioPort(1, "Output") + " ] .",
         "\"X\" could not be loaded: it names no library."},
        {scripted("absent"), "\"absent\" could not be loaded: " + scriptedLv2Library + " does not have it.",
         true},
        {scripted("refuses"), "\"refuses\" could not be started at 48000 Hz.", true},
        {Lv2Bundles::plugin("urn:x", "X", "lv2:requiredFeature <urn:feature> ;"),
         "\"X\" needs the LV2 feature urn:feature, which is not supported."},
        {Lv2Bundles::plugin("urn:x", "X", "lv2:requiredFeature bufsz:powerOf2BlockLength ;"),
         "\"X\" needs blocks of a fixed length, which a live mix does not have."},
        {Lv2Bundles::plugin("urn:x", "X", "opts:requiredOption <urn:option> ;"),
         "\"X\" needs the LV2 option urn:option, which is not supported."},
        {Lv2Bundles::plugin(
             "urn:x", "X",
             "lv2:port [ a <urn:Port>, lv2:InputPort ; lv2:index 2 ; lv2:symbol \"c\" ; lv2:name \"C\" ] ;"
         ),
         "\"X\" cannot be used: its port number 2 is of a kind that is not supported."}};
    for (const auto& each : cases) {
        const Lv2Bundles broken;
        broken.add("x.lv2", each.manifest);
        const auto listed = Lv2UnitHost(log, broken.searchPath()).componentsMatchingDescription({});
        EXPECT_EQ(listed.size(), each.isListed ? 1U : 0U) << each.sentence;
        // A listed plugin may also become unusable while the program runs.
        if (!each.isListed) broken.add("x.lv2", plain);
        Lv2UnitHost brokenHost(log, broken.searchPath());
        const auto components = brokenHost.componentsMatchingDescription({});
        ASSERT_EQ(components.size(), 1U) << each.sentence;
        broken.add("x.lv2", each.manifest);
        const auto made = test::instantiate(brokenHost, components[0].audioComponentDescription);
        EXPECT_FALSE(made.unit);
        EXPECT_THAT(made.error.value_or(Error{}).description, HasSubstr(each.sentence));
    }
    const auto unknown = test::instantiate(*host, AudioComponentDescription{.componentSubType = 1});
    EXPECT_EQ(unknown.error, Error{"The effect is not installed."});
}

TEST_F(Lv2UnitTest, APluginWithTwoPortsOnOneSideOnlyIsAStereoEffect) {
    bundles.add("split.lv2", scriptedPorts("split", "Input", "Output", "Output"));
    bundles.add("join.lv2", scriptedPorts("join", "Input", "Input", "Output"));
    const std::tuple<const char*, float, float> cases[] = {{"split", 1.0F, 3.0F}, {"join", 4.0F, 4.0F}};
    for (const auto& [name, left, right] : cases) {
        const auto unit = make(name);
        ASSERT_TRUE(unit) << name;
        EXPECT_THAT(setUp(*unit, 1), HasSubstr("is for 2 channels, not 1.")) << name;
        ASSERT_EQ(setUp(*unit, 2), "") << name;
        UnitRenderer renderer(*unit, 2);
        EXPECT_EQ(renderer.renderBlock(ones), noErr) << name;
        EXPECT_THAT(renderer.outputs[0], Each(left)) << name;
        EXPECT_THAT(renderer.outputs[1], Each(right)) << name;
    }
}

TEST_F(Lv2UnitTest, EveryRequestIsAnsweredOnceEvenIfTheHostIsDestroyed) {
    constexpr int count = 20;
    std::atomic<int> answers = 0;
    std::vector<std::shared_ptr<AUAudioUnit>> units(count);
    const auto component = host->componentsMatchingDescription({}).front();
    for (auto& kept : units)
        host->instantiate(component.audioComponentDescription, 0, [&](auto unit, auto error) {
            EXPECT_EQ(unit == nullptr, error.has_value());
            kept = std::move(unit);
            answers.fetch_add(1);
        });
    host.reset();
    EXPECT_EQ(answers.load(), count);
    for (const auto& unit : units) {
        if (unit) {
            EXPECT_EQ(setUp(*unit, 1), "");
        }
    }
}

TEST_F(Lv2UnitTest, RendersOnlyWithResourcesAndUpToTheMaximumBlock) {
    const auto unit = make("plain");
    UnitRenderer renderer(*unit, 1);
    EXPECT_EQ(renderer.renderBlock(ones), kAudioUnitErr_Uninitialized);
    ASSERT_EQ(setUp(*unit, 1, 48000.0, 64), "");
    EXPECT_EQ(renderer.renderBlock(ones), noErr);
    EXPECT_THAT(renderer.outputs[0], Each(0.5F));
    EXPECT_EQ(renderer.renderBlock(std::vector<float>(65)), kAudioUnitErr_TooManyFramesToProcess);
    UnitRenderer stereo(*unit, 2);
    stereo.inputs.resize(1);
    EXPECT_EQ(stereo.renderBlock(ones), kAudio_ParamError);
    unit->deallocateRenderResources();
    EXPECT_EQ(renderer.renderBlock(ones), kAudioUnitErr_Uninitialized);
    ASSERT_EQ(setUp(*unit, 1, 48000.0, 8192), "");
    EXPECT_EQ(renderer.renderBlock(std::vector<float>(8192)), noErr);
}

TEST_F(Lv2UnitTest, AListWithoutBuffersOrWithTheInputsGetsTheUnitsOwn) {
    const auto unit = makeReady();
    std::vector<float> input = ones;
    const AURenderPullInputBlock pull = [&](auto&, const auto&, auto, auto, AudioBufferList& list) {
        list.mBuffers[0].mData = input.data();
        return noErr;
    };
    const auto render = unit->renderBlock();
    AudioUnitRenderActionFlags flags = 0;
    for (void* const given : {static_cast<void*>(nullptr), static_cast<void*>(input.data())}) {
        std::vector<AudioBuffer> buffers{{1, 256, given}};
        AudioBufferList list{buffers};
        ASSERT_EQ(render(flags, {}, 64, 0, list, pull), noErr);
        ASSERT_NE(buffers[0].mData, given);
        EXPECT_EQ(static_cast<const float*>(buffers[0].mData)[63], 0.5F);
        EXPECT_EQ(render(flags, {}, 64, 0, list, {}), kAudioUnitErr_NoConnection);
        EXPECT_EQ(render(flags, {}, 64, 1, list, pull), kAudioUnitErr_InvalidElement);
    }
}

TEST_F(Lv2UnitTest, InvalidOutputIsAnErrorWhileItLasts) {
    const auto unit = makeReady();
    UnitRenderer renderer(*unit, 1);
    std::vector<float> all(test::noSound.begin(), test::noSound.end());
    all.insert(all.end(), {64.001F, -64.001F});
    for (const float bad : all) {
        probe().plays.store(bad);
        EXPECT_EQ(renderer.renderBlock(ones), kAudioUnitErr_CannotDoInCurrentContext) << bad;
        probe().plays.store(0.0F);
        EXPECT_EQ(renderer.renderBlock(ones), noErr) << bad;
    }
    for (const float good : {std::numeric_limits<float>::denorm_min(), 64.0F, -64.0F}) {
        probe().plays.store(good);
        EXPECT_EQ(renderer.renderBlock(ones), noErr) << good;
    }
    probe().plays.store(0.0F);
}

TEST_F(Lv2UnitTest, SurvivesAPluginThatThrows) {
    using Throw = test::ScriptedLv2Probe::Throw;
    const int pluginsBefore = probe().pluginCount.load();
    const std::tuple<Throw, const char*, OSStatus> cases[] = {
        {Throw::run, "plain: the plugin failed in the middle of a block, so it no longer runs.",
         kAudioUnitErr_CannotDoInCurrentContext},
        {Throw::workResponse, "plain: the plugin failed in the middle of a block, so it no longer runs.",
         kAudioUnitErr_CannotDoInCurrentContext},
        {Throw::work, "plain: the plugin failed in its background work.", noErr},
        {Throw::save, "plain: the plugin could not save all of its state.", noErr},
        {Throw::restore, "plain: the plugin could not restore all of its state.", noErr},
        {Throw::cleanup, "plain: the plugin failed while it was being closed.", noErr}};
    for (const auto& [place, logged, rendered] : cases) {
        SCOPED_TRACE(logged);
        lines.clear();
        {
            const auto unit = makeReady();
            UnitRenderer renderer(*unit, 1);
            ASSERT_EQ(renderer.renderBlock(ones), noErr);
            probe().throwsIn.store(place);
            const auto state = unit->fullState();
            EXPECT_TRUE(state && state->contains("controls"));
            EXPECT_TRUE(unit->setFullState(*state));
            // Throwing allocates.
            const auto isOver = [&, expected = rendered] {
                return renderer.renderBlock(ones, false) == expected
                       && (log.flush(), place == Throw::cleanup || !lines.empty());
            };
            EXPECT_TRUE(waitFor(isOver));
            probe().throwsIn.store(place == Throw::cleanup ? place : Throw::nowhere);
            EXPECT_EQ(renderer.renderBlock(ones), rendered);
        }
        EXPECT_TRUE(waitFor([&] { return log.flush(), !lines.empty(); }));
        probe().throwsIn.store(Throw::nowhere);
        EXPECT_THAT(lines, testing::ElementsAre(logged));
    }
    probe().throwsIn.store(Throw::instantiate);
    const auto made = test::instantiate(*host, "plain");
    probe().throwsIn.store(Throw::nowhere);
    EXPECT_EQ(made.error, Error{"\"plain\" could not be started at 48000 Hz."});
    {
        const auto unit = make("plain");
        probe().throwsIn.store(Throw::extensionData);
        EXPECT_EQ(setUp(*unit, 1, 96000.0), "\"plain\" failed while it was being set up for 96000 Hz.");
        probe().throwsIn.store(Throw::nowhere);
        EXPECT_EQ(setUp(*unit, 1, 96000.0), "");
    }
    EXPECT_TRUE(waitFor([&] { return probe().pluginCount.load() == pluginsBefore; }));
}

TEST_F(Lv2UnitTest, AcceptsOrRefusesCallsFromOtherThreads) {
    const auto unit = makeReady();
    UnitRenderer renderer(*unit, 1);
    ASSERT_TRUE(waitFor([&] {
        EXPECT_EQ(renderer.renderBlock(ones), noErr);
        return parameter(*unit, "answer").value() == 5.0F;
    }));
    std::vector<std::thread> strangers;
    std::atomic<int> calling = 3;
    for (int i = 0; i < 3; ++i)
        strangers.emplace_back([&] {
            // Any thread may map and log; other threads may not schedule or respond.
            for (int call = 0; call < 300; ++call)
                EXPECT_EQ(probe().callHost(), 2);
            --calling;
        });
    while (calling > 0) {
        EXPECT_EQ(renderer.renderBlock(ones), noErr);
        EXPECT_THAT(renderer.outputs[0], Each(0.5F));
    }
    for (std::thread& stranger : strangers)
        stranger.join();
    EXPECT_EQ(parameter(*unit, "answer").value(), 5.0F);
}

TEST_F(Lv2UnitTest, WorkRunsOnAnotherThreadAndItsResponseArrivesWithALaterBlock) {
    const auto unit = makeReady();
    UnitRenderer renderer(*unit, 1);
    const int endedBefore = probe().runsEnded.load();
    EXPECT_EQ(renderer.renderBlock(ones), noErr);
    EXPECT_EQ(probe().runsEnded.load(), endedBefore + 1);
    EXPECT_EQ(parameter(*unit, "answer").value(), 0.0F) << "or -1: a port is not connected as it should be";
    const auto answers = [&](float expected) {
        return waitFor([&] {
            EXPECT_EQ(renderer.renderBlock(ones), noErr);
            return parameter(*unit, "answer").value() == expected;
        });
    };
    EXPECT_TRUE(answers(5.0F));
    parameter(*unit, "gain").setValue(0.25F);
    EXPECT_TRUE(answers(2.5F));
    parameter(*unit, "answer").setValue(9.0F);
    EXPECT_EQ(parameter(*unit, "answer").value(), 2.5F) << "it is the plugin's to set";
}

TEST_F(Lv2UnitTest, ARestoreNeverBlocksRendering) {
    for (const bool isSafe : {false, true}) {
        const auto unit = makeReady(isSafe ? "safe" : "plain");
        const auto state = *unit->fullState();
        UnitRenderer renderer(*unit, 1);
        ASSERT_EQ(renderer.renderBlock(ones), noErr);

        probe().runsDuringRestore.store(0);
        probe().holdsRestore.store(true);
        std::thread control([&] { EXPECT_TRUE(unit->setFullState(state)); });
        ASSERT_TRUE(waitFor([] { return probe().isRestoring.load(); }));
        EXPECT_EQ(renderer.renderBlock(ones), noErr);
        EXPECT_THAT(renderer.outputs[0], Each(isSafe ? 0.5F : 1.0F)) << "passes through while it cannot run";
        EXPECT_EQ(probe().runsDuringRestore.load(), isSafe ? 1 : 0);
        probe().holdsRestore.store(false);
        control.join();
        EXPECT_EQ(renderer.renderBlock(ones), noErr);
        EXPECT_THAT(renderer.outputs[0], Each(0.5F));
    }
}

TEST_F(Lv2UnitTest, RendersWhileARestoreWaitsForWork) {
    const auto unit = makeReady();
    const auto state = *unit->fullState();
    UnitRenderer renderer(*unit, 1);
    probe().holdsWork.store(true);
    ASSERT_EQ(renderer.renderBlock(ones), noErr);
    ASSERT_TRUE(waitFor([] { return probe().isWorking.load(); }));
    std::atomic<bool> isAsking = false;
    std::thread control([&] {
        isAsking.store(true);
        EXPECT_TRUE(unit->setFullState(state));
    });
    EXPECT_TRUE(waitFor([&] { return isAsking.load(); }));
    int dryBlocks = 0;
    for (int block = 0; block < 2000; ++block) {
        EXPECT_EQ(renderer.renderBlock(ones), noErr);
        dryBlocks += renderer.outputs[0][0] == 0.5F ? 0 : 1;
    }
    EXPECT_EQ(dryBlocks, 0);
    probe().holdsWork.store(false);
    control.join();
}

TEST_F(Lv2UnitTest, RestoresAndEditsWhileItRenders) {
    const auto unit = makeReady();
    std::atomic<bool> isDone = false;
    std::thread audio([&] {
        UnitRenderer renderer(*unit, 1);
        while (!isDone.load())
            EXPECT_EQ(renderer.renderBlock(ones), noErr);
    });
    for (int i = 0; i < 300; ++i) {
        parameter(*unit, "gain").setValue(static_cast<float>(i) / 300.0F);
        EXPECT_TRUE(unit->setFullState(*unit->fullState()));
    }
    isDone.store(true);
    audio.join();
}

TEST_F(Lv2UnitTest, ReportsTheLatencyOfTheLastBlock) {
    std::string manifest = scripted("plain");
    const auto replace = [&](const std::string& old, const std::string& by) {
        manifest.replace(manifest.find(old), old.size(), by);
    };
    replace("lv2:maximum 2", "lv2:maximum 1e9 ; lv2:minimum -1");
    replace("lv2:symbol \"answer\"", "lv2:symbol \"answer\" ; lv2:designation lv2:latency");
    const Lv2Bundles late;
    late.add("late.lv2", manifest);
    Lv2UnitHost lateHost(log, late.searchPath());
    const auto unit = test::instantiate(lateHost, "plain").unit;
    ASSERT_EQ(setUp(*unit, 1), "");
    EXPECT_EQ(unit->latencyFrames(), 0U);
    UnitRenderer renderer(*unit, 1);
    // The plugin reports ten times its gain.
    for (const auto& [gain, latency] :
         {std::pair{48.0F, 480U}, {1e9F, 0U}, {25.0F, 250U}, {-1.0F, 0U}, {24.0F, 240U}}) {
        parameter(*unit, "gain").setValue(gain);
        EXPECT_TRUE(waitFor([&, expected = latency] {
            renderer.renderBlock(ones);
            return unit->latencyFrames() == expected;
        })) << gain;
    }
}

TEST_F(Lv2UnitTest, ParametersAcceptWhatTheirKindAllows) {
    const Lv2Bundles more;
    const auto port = [](int index, const std::string& name, const std::string& rest) {
        return fmt::format(
            "[ a lv2:ControlPort, lv2:InputPort ; lv2:index {} ; lv2:symbol \"{}\" ; lv2:name \"N\" ; {} ]",
            index, name, rest
        );
    };
    const std::string point = "[ <http://www.w3.org/2000/01/rdf-schema#label> \"x\" ; "
                              "<http://www.w3.org/1999/02/22-rdf-syntax-ns#value> ";
    more.add(
        "x.lv2",
        scripted("plain") + "<urn:orvane:test:plain> lv2:port "
            + port(8, "whole", "lv2:maximum 9 ; lv2:portProperty lv2:integer") + " , "
            + port(9, "toggle", "lv2:portProperty lv2:toggled") + " , "
            + port(
                10, "choice",
                "lv2:maximum 9 ; lv2:portProperty lv2:enumeration ; lv2:scalePoint " + point + "1 ] , "
                    + point + "4 ]"
            )
            + " , " + port(11, "rate", "lv2:maximum 0.5 ; lv2:default 0.25 ; lv2:portProperty lv2:sampleRate")
            + " ."
    );
    Lv2UnitHost moreHost(log, more.searchPath());
    const auto unit = test::instantiate(moreHost, "plain").unit;
    const std::tuple<const char*, float, float> cases[] = {
        {"gain", 5.0F, 2.0F},   {"gain", -5.0F, 0.0F},  {"whole", 3.6F, 4.0F},    {"toggle", 0.7F, 1.0F},
        {"choice", 2.0F, 1.0F}, {"choice", 9.0F, 4.0F}, {"rate", 1e9F, 24000.0F}, {"rate", 12.5F, 12.5F}};
    EXPECT_EQ(parameter(*unit, "rate").value(), 12000.0F);
    for (const auto& [identifier, set, expected] : cases) {
        parameter(*unit, identifier).setValue(set);
        EXPECT_EQ(parameter(*unit, identifier).value(), expected) << identifier << set;
        parameter(*unit, identifier).setValue(std::numeric_limits<float>::quiet_NaN());
        EXPECT_EQ(parameter(*unit, identifier).value(), expected) << identifier;
    }
    ASSERT_EQ(setUp(*unit, 1, 96000.0), "");
    EXPECT_EQ(parameter(*unit, "rate").info().maxValue, 48000.0F);
}

} // namespace
} // namespace orvane::platform::lv2
