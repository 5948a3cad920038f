#include "support/lv2_bundles.h"
#include "support/wait_for.h"

#include "scripted_host_test.h"

#include <dlfcn.h>

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

// When and on which threads plugin code is called, and what waits for it.

namespace orvane::platform::lv2 {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

class PluginCalls : public test::ScriptedHostTest {
  protected:
    /// A unit whose plugin is working until `probe().holdsWork` is cleared.
    std::shared_ptr<AUAudioUnit> makeBusy() {
        auto unit = makeReady();
        probe().holdsWork.store(true);
        EXPECT_EQ(UnitRenderer(*unit, 1).renderBlock(ones), noErr);
        EXPECT_TRUE(waitFor([] { return probe().isWorking.load(); }));
        return unit;
    }

    const int pluginsBefore = probe().pluginCount.load();
    const std::function<bool()> areAllGone = [this] { return probe().pluginCount.load() == pluginsBefore; };
};

TEST_F(PluginCalls, NoCodeRunsOfAPluginThatSupportsNoFormat) {
    const Lv2Bundles wide;
    const std::string fits = scriptedPorts("split", "Input", "Output", "Output");
    wide.add("wide.lv2", fits);
    Lv2UnitHost wideHost(log, wide.searchPath());
    const auto component = wideHost.componentsMatchingDescription({}).at(0).audioComponentDescription;
    // Another version of it, installed while the program runs.
    wide.add(
        "wide.lv2", fits + "<urn:orvane:test:split> lv2:port [ " + Lv2Bundles::audioPort(3, "Output") + " ] ."
    );
    const auto unit = test::instantiate(wideHost, component).unit;
    ASSERT_TRUE(unit);
    for (const std::uint32_t channels : {1U, 2U})
        EXPECT_THAT(setUp(*unit, channels), HasSubstr("put of \"split\" is for ")) << channels;
    EXPECT_FALSE(unit->allocateRenderResources());
    EXPECT_TRUE(unit->setFullState(*unit->fullState()));
    EXPECT_EQ(probe().pluginCount.load(), pluginsBefore);
}

TEST_F(PluginCalls, APluginIsActivatedAndDeactivatedBeforeCleanup) {
    const int untimelyBefore = probe().untimelyCleanups.load();
    make("plain").reset();
    EXPECT_TRUE(waitFor(areAllGone));
    auto unit = make("plain");
    // The instance for 48 kHz ends unused.
    ASSERT_EQ(setUp(*unit, 1, 96000.0), "");
    unit->deallocateRenderResources();
    ASSERT_EQ(setUp(*unit, 1, 96000.0), "");
    unit.reset();
    EXPECT_TRUE(waitFor(areAllGone));
    EXPECT_EQ(probe().untimelyCleanups.load(), untimelyBefore);
}

TEST_F(PluginCalls, SettingUpAndReleasingAUnitDoNotWaitForLoading) {
    host->expectSampleRate(96000.0);
    host->expectSampleRate(0.0);
    auto unit = make("plain");
    probe().holdsInstantiate.store(true);
    auto made = std::async(std::launch::async, [this] { return test::instantiate(*host, "plain").unit; });
    EXPECT_TRUE(waitFor([] { return probe().isInstantiating.load(); }));
    std::atomic<bool> isGone = false;
    const auto gone = std::async(std::launch::async, [&] {
        EXPECT_EQ(setUp(*unit, 1, 96000.0), "");
        unit.reset();
        isGone.store(true);
    });
    EXPECT_TRUE(waitFor([&] { return isGone.load(); }));
    EXPECT_EQ(probe().pluginCount.load(), pluginsBefore + 1);
    probe().holdsInstantiate.store(false);
    made.get().reset();
    EXPECT_TRUE(waitFor(areAllGone));
}

TEST_F(PluginCalls, OnlyOnePluginIsSetUpAtATime) {
    const int overlapsBefore = probe().overlappingSetUps.load();
    const auto unit = make("plain");
    std::atomic<bool> isDone = false;
    std::thread loading([&] {
        while (!isDone.load())
            EXPECT_TRUE(make("safe"));
    });
    // Each call makes and ends an instance on this thread.
    for (int i = 0; i < 40; ++i) {
        ASSERT_EQ(setUp(*unit, 1, i % 2 == 0 ? 96000.0 : 48000.0), "");
        unit->deallocateRenderResources();
    }
    isDone.store(true);
    loading.join();
    EXPECT_EQ(probe().overlappingSetUps.load(), overlapsBefore);
}

TEST_F(PluginCalls, TheSharedTransformPlannerIsThreadSafe) {
    make("plain");
    void* const library = ::dlopen("libfftw3f.so.3", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << "the distribution's plugins bring it along";
    using Complex = float[2];
    const auto plan = reinterpret_cast<void* (*)(int, Complex*, Complex*, int, unsigned)>(
        ::dlsym(library, "fftwf_plan_dft_1d")
    );
    const auto destroy = reinterpret_cast<void (*)(void*)>(::dlsym(library, "fftwf_destroy_plan"));
    constexpr unsigned estimate = 1U << 6U;
    std::vector<std::thread> planning;
    for (int i = 0; i < 4; ++i)
        planning.emplace_back([&] {
            std::vector<std::array<float, 2>> samples(600);
            auto* const data = reinterpret_cast<Complex*>(samples.data());
            for (int size = 2; size < 600; ++size)
                destroy(plan(size, data, data, -1, estimate));
        });
    for (std::thread& each : planning)
        each.join();
}

TEST_F(PluginCalls, WorkThatDoesNotEndBlocksOnlyItsPlugin) {
    auto busy = makeBusy();
    busy.reset();
    auto other = make("plain");
    EXPECT_EQ(setUp(*other, 1, 96000.0), "");
    other.reset();
    EXPECT_TRUE(waitFor([&] { return probe().pluginCount.load() == pluginsBefore + 1; }));
    probe().holdsWork.store(false);
    EXPECT_TRUE(waitFor(areAllGone)) << "it is cleaned up once its work is done";
}

TEST_F(PluginCalls, WorkThatDoesNotEndOnlyPreventsARestore) {
    const auto busy = makeBusy();
    const auto state = *busy->fullState();
    for (int time = 0; time < 2; ++time)
        EXPECT_TRUE(busy->setFullState(state));
    EXPECT_EQ(UnitRenderer(*busy, 1).renderBlock(ones), noErr);
    EXPECT_EQ((busy->deallocateRenderResources(), setUp(*busy, 1, 96000.0)), "");
    log.flush();
    const char* const line =
        "plain: the plugin did not restore its state because its background work does not end.";
    EXPECT_THAT(lines, ElementsAre(line, line));
    probe().holdsWork.store(false);
}

TEST_F(PluginCalls, OfflineWorkIsDoneAtOnceAndThePluginIsNotified) {
    bundles.add("amplifier.lv2", test::scriptedAmplifier());
    Lv2UnitHost offline(log, bundles.searchPath(), std::nullopt, RenderMode::offline);
    const auto unit = test::instantiate(offline, "amplifier").unit;
    ASSERT_EQ(setUp(*unit, 1), "");
    UnitRenderer renderer(*unit, 1);
    ASSERT_EQ(renderer.renderBlock(ones), noErr);
    EXPECT_THAT(renderer.outputs[0], testing::Each(0.0F)) << "the response comes after the block";
    probe().goesOnWorking.store(true);
    ASSERT_EQ(renderer.renderBlock(ones), noErr);
    EXPECT_THAT(renderer.outputs[0], testing::Each(10.0F));
    // Its own response, a hundred, came before that to the block.
    probe().goesOnWorking.store(false);
    ASSERT_EQ(renderer.renderBlock(ones), noErr);
    EXPECT_THAT(renderer.outputs[0], testing::Each(10.0F));
}

TEST_F(PluginCalls, TheHostsDestructorWaitsForPluginsAtWork) {
    makeBusy();
    std::thread release([] { probe().holdsWork.store(false); });
    host.reset();
    EXPECT_TRUE(areAllGone());
    release.join();
}

TEST_F(PluginCalls, AllPendingResponsesAreDeliveredInOneRun) {
    const auto unit = makeReady();
    UnitRenderer renderer(*unit, 1);
    const auto renderWithGain = [&](float gain) {
        test::parameter(*unit, "gain").setValue(gain);
        EXPECT_EQ(renderer.renderBlock(ones), noErr);
    };
    const int doneBefore = probe().worksDone;
    probe().holdsWork.store(true);
    for (const float gain : {0.25F, 0.5F, 1.0F})
        renderWithGain(gain);
    probe().holdsWork.store(false);
    EXPECT_TRUE(waitFor([&] { return probe().worksDone == doneBefore + 3; }));
    // Responses arrive after the run; the next run shows the last of them.
    renderWithGain(1.0F);
    renderWithGain(1.0F);
    EXPECT_EQ(test::parameter(*unit, "answer").value(), 10.0F);
}

} // namespace
} // namespace orvane::platform::lv2
