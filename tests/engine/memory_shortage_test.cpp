#include "engine/session_files.h"
#include "insert_plugins_fixture.h"
#include "support/failing_allocation.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace orvane;
using test::FailingAllocation;
using testing::AnyOf;

/// Follows values as their subscriber.
class Follower final {
  public:
    template <class... T>
    explicit Follower(const platform::Published<T>&... values) {
        (follow(values), ...);
    }

    /// Whether every value is the one that was published last.
    [[nodiscard]] bool isUpToDate() const {
        return std::ranges::all_of(checks, [](const auto& check) { return check(); });
    }

  private:
    template <class T>
    void follow(const platform::Published<T>& value) {
        const auto last = std::make_shared<T>(value.get());
        subscriptions.push_back(value.subscribe([last](const T& published) { *last = published; }));
        checks.emplace_back([last, &value] { return *last == value.get(); });
    }

    std::vector<platform::Subscription> subscriptions;
    std::vector<std::function<bool()>> checks;
};

/// The engine's operations with each of their allocations failing in turn.
class MemoryShortage : public test::InsertPlugins {
  protected:
    /// Calls `operate` with its first allocation failing, then with its second and so on, until it meets no
    /// failure; `check` follows each that does.
    void failAtEachAllocation(
        const std::function<void()>& operate, const std::function<void(std::size_t nth)>& check
    ) {
        for (std::size_t nth = 1;; ++nth) {
            bool hasFailed = false;
            {
                const FailingAllocation failing(nth);
                operate();
                hasFailed = failing.hasHappened();
            }
            if (!hasFailed) {
                EXPECT_GT(nth, 10U) << "it hardly allocates at all";
                return;
            }
            SCOPED_TRACE(testing::Message() << "allocation " << nth);
            check(nth);
            if (HasFatalFailure()) return;
        }
    }

    /// A mix with a plugin in slot 0 and another in slot 1, and a scene that differs in all it can.
    void makeMixAndScene() {
        startBypassed();
        loadLive(stereo, 0)->gain = 8.0F;
        engine->setMasterTargetDB(-20.0);
        engine->setTrim(id(0), 0.25);
        engine->newSnapshot("Other");
        loadLive(mono, 0)->gain = 2.0F;
        loadLive(mono, 1)->gain = 3.0F;
        engine->setMasterTargetDB(-10.0);
        engine->setTrim(id(0), 1.0);
        engine->setName(id(0), "A name that is too long to stand in a string by itself");
    }

    /// Nothing of the operation is left: not in the mix, not for the ears, not for subscribers, not later.
    void expectMixAsItWas(const session::MixerDocumentData& before, const Follower& follower) {
        for (const char* when : {"at once", "after all that is posted has run"}) {
            ASSERT_EQ(engine->makeDocumentData(), before) << when;
            ASSERT_EQ(heard(), 6.0F) << when;
            ASSERT_EQ(heard(1), 1.0F) << when;
            ASSERT_EQ(loadState(0), plugins::PluginLoadState(plugins::load_state::Loaded{})) << when;
            ASSERT_TRUE(follower.isUpToDate()) << when;
            mainThread.advance(std::chrono::milliseconds(50));
        }
        EXPECT_EQ(audioUnitHost.report.living.load(), 2);
        EXPECT_EQ(audioUnitHost.report.rendersWithoutResources.load(), 0);
    }

    void changeWholeOrNotAtAll(
        const std::function<void()>& operate, const session::MixerDocumentData& before,
        const std::string& sentence
    ) {
        const engine::EngineState& state = engine->state();
        const Follower follower(
            state.channelStrips, state.snapshots, state.pluginLoadStates, state.currentSnapshotIndex,
            state.master, state.bufferSize, state.isRunning
        );
        failAtEachAllocation(operate, [&](std::size_t) {
            ASSERT_EQ(message(), sentence);
            expectMixAsItWas(before, follower);
        });
        mainThread.runPosted();
        EXPECT_EQ(heard(), 2.0F);
        EXPECT_EQ(audioUnitHost.report.ready.load(), 1);
        EXPECT_TRUE(follower.isUpToDate());
    }
};

TEST_F(MemoryShortage, LeavesTheMixerStoppedAndReadyToStart) {
    for (std::size_t strip = 0; strip < test::stripCount; ++strip)
        engine->setBypassed(id(strip), true);
    const auto loadForAnotherRate = [this] {
        audio::AudioDeviceInfo faster = device(interface);
        faster.sampleRate = 96000.0;
        engine->selectDevice(faster);
        loadLive(mono, 0)->gain = 2.0F;
        engine->selectDevice(device(interface));
    };
    loadForAnotherRate();
    failAtEachAllocation(
        [this] { engine->start(); },
        [&](std::size_t) {
            EXPECT_EQ(message(), "Failed to start audio engine: there is not enough memory.");
            ASSERT_FALSE(isRunning());
            EXPECT_EQ(step(), 0U);
            engine->start();
            ASSERT_TRUE(isRunning()) << message();
            EXPECT_EQ(heard(), 2.0F);
            engine->stop();
            loadForAnotherRate();
        }
    );
    EXPECT_EQ(heard(), 2.0F);
}

TEST_F(MemoryShortage, LoadsASessionWholeOrNotAtAll) {
    makeMixAndScene();
    const session::MixerDocumentData before = engine->makeDocumentData();
    session::MixerDocumentData document = before;
    document.bufferSize = 256;
    document.master.duckerReleaseMs = 900.0;
    document.master.levels.masterTargetDB = -20.0;
    document.master.levels.leadGroupGainDB = 1.0;
    document.master.levels.backingGroupGainDB = 2.0;
    document.master.referenceNoiseGain = 0.5;
    document.master.masterOutputRouting = session::output::Mono{2};
    document.pluginSlotRecallSafe = {false, false, true};
    const session::Snapshot& scene = document.snapshots.at(0);
    document.channels.assign(scene.channels.begin(), scene.channels.end());
    document.snapshots.resize(3, session::Snapshot(scene));
    changeWholeOrNotAtAll(
        [&] { engine->applyDocument(document); }, before,
        "There is not enough memory to load the session; the mixer is as it was."
    );
    EXPECT_EQ(engine->makeDocumentData(), document);
}

TEST_F(MemoryShortage, RecallsASceneWholeOrNotAtAll) {
    makeMixAndScene();
    const session::MixerDocumentData before = engine->makeDocumentData();
    changeWholeOrNotAtAll(
        [&] { engine->recallSnapshot(0); }, before,
        "There is not enough memory to recall the scene; the mixer is as it was."
    );
    EXPECT_EQ(engine->state().master.get().levels.masterTargetDB, -20.0);
}

TEST_F(MemoryShortage, KeepsPluginsWhoseLoadingOrRemovalRunsOutOfMemory) {
    startBypassed();
    const std::function<void()> operations[] = {
        [this] { engine->loadPlugin(stereo, 0, id(0)); }, [this] { engine->removePlugin(0, id(0)); }};
    for (const auto& operate : operations) {
        loadLive(mono, 0)->gain = 2.0F;
        failAtEachAllocation(
            [&] {
                try {
                    operate();
                    mainThread.runPosted();
                } catch (const std::bad_alloc&) {
                }
            },
            [&](std::size_t) {
                const bool isThere = engine->livePlugin(0, id(0)) != nullptr;
                for (int block = 0; block < 3; ++block) {
                    EXPECT_THAT(heard(), AnyOf(2.0F, 1.0F));
                    engine->setTrim(id(0), 1.0);
                    EXPECT_EQ(engine->livePlugin(0, id(0)) != nullptr, isThere) << "no slot holds nothing";
                    mainThread.advance(std::chrono::milliseconds(50));
                }
                EXPECT_EQ(audioUnitHost.report.rendersWithoutResources, 0);
                loadLive(mono, 0)->gain = 2.0F;
            }
        );
        mainThread.advance(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(audioUnitHost.report.living, 0);
}

TEST_F(MemoryShortage, SavesASessionOrLeavesTheFileAlone) {
    makeMixAndScene();
    const session::MixerDocumentData document = engine->makeDocumentData();
    const test::TemporaryFolder folder;
    const auto path = folder.add("show.orvane", "the last one");
    std::optional<platform::Result<platform::Done>> saved;
    failAtEachAllocation(
        [&] { saved.emplace(engine::exportSession(document, path)); },
        [&](std::size_t) {
            ASSERT_FALSE(*saved);
            EXPECT_EQ(
                saved->error().description, "Export failed: there is not enough memory to write the session."
            );
            EXPECT_EQ(test::contentOf(path), "the last one");
            EXPECT_EQ(folder.names().size(), 1U);
        }
    );
    ASSERT_TRUE(*saved);
    EXPECT_EQ(engine::readSession(path).value(), document);
}

} // namespace
