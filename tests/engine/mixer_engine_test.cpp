#include "mixer_engine_fixture.h"

#include "engine/buffer_sizes.h"
#include "support/failing_allocation.h"
#include "support/random_document.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace testing;
using engine::MixerEngine;
using session::ChannelStrip;
using test::MixerEngineTest;
namespace output = session::output;
namespace master_output = session::master_output;

TEST_F(MixerEngineTest, BeginsStoppedWithFreshStrips) {
    EXPECT_EQ(strips().size(), 8U);
    EXPECT_EQ(engine->bufferLatencyMs(), 0.0);
    EXPECT_EQ(engine->ringBufferBytes(), 0);
    engine->start();
    EXPECT_EQ(message(), "No audio device selected.");
    EXPECT_FALSE(isRunning());
    engine->selectDevice(device(interface));
    EXPECT_DOUBLE_EQ(engine->bufferLatencyMs(), 512.0 / 48.0);
    EXPECT_EQ(engine->ringBufferBytes(), 6 * 512 * 32);
}

TEST_F(MixerEngineTest, FillsOnlyOpenRoutingWhenADeviceIsSelected) {
    engine->setInputChannel(strips()[2].id, 7);
    engine->setOutputChannel(strips()[2].id, 0);
    engine->setStereo(strips()[2].id, true);
    engine->setMasterStereoPair(4);
    engine->setMasterStereo(true);
    engine->setMasterStereoPair(6);
    engine->selectDevice(device(interface));
    EXPECT_EQ(strips()[2].inputChannelIndex, 7);
    EXPECT_EQ(strips()[2].outputRouting, session::OutputRouting(output::Stereo{0, 1, 0.0}));
    EXPECT_EQ(strips()[3].inputChannelIndex, 3);
    EXPECT_FALSE(strips()[4].inputChannelIndex);
    EXPECT_EQ(strips()[5].outputRouting, session::OutputRouting(output::Mono{5}));
    EXPECT_EQ(strips()[6].outputRouting, session::OutputRouting(output::None{}));
    EXPECT_EQ(engine->state().master.get().masterOutputRouting, session::MasterOutputRouting(output::None{}));
    engine->resetRoutingOneToOne();
    EXPECT_EQ(strips()[2].outputRouting, session::OutputRouting(output::Mono{2}));
    engine->allOutputsOff();
    EXPECT_EQ(strips()[2].inputChannelIndex, 2);
    EXPECT_EQ(strips()[2].outputRouting, session::OutputRouting(output::None{}));
}

TEST_F(MixerEngineTest, RunsUntilItIsStoppedAndStartsAgain) {
    startBypassed();
    EXPECT_EQ(message(), "");
    engine->start();
    EXPECT_EQ(step(), 1U);
    EXPECT_EQ(mainOutput->played[3], static_cast<float>(test::steadyLevel));
    EXPECT_EQ(mainOutput->played[5], 0.0F);
    mainThread.advance(std::chrono::milliseconds(40));
    EXPECT_EQ(engine->meterModel().channelMeters.get().size(), 9U);
    EXPECT_EQ(engine->meterModel().channelMeters.get()[0], test::steadyLevel);
    engine->stop();
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(step(), 0U);
    EXPECT_EQ(engine->meterModel().cpuLoad.get(), 0.0);
    EXPECT_EQ(engine->meterModel().channelMeters.get()[0], test::steadyLevel);
    engine->start();
    EXPECT_EQ(step(interface, 3), 3U);
}

TEST_F(MixerEngineTest, AppliesEveryEditInTheNextBlock) {
    startBypassed();
    const platform::Uuid first = strips()[0].id;
    const auto level = static_cast<float>(test::steadyLevel);
    const std::tuple<const char*, std::function<void()>, float, std::size_t> edits[] = {
        {"trim", [&] { engine->setTrim(first, 0.5); }, 0.5F * level, 0},
        {"unknown strip", [&] { engine->setTrim(platform::Uuid::random(), 0.0); }, 0.5F * level, 0},
        {"role", [&] { engine->setVocalRole(first, dsp::VocalRole::lead); }, 0.5F * level, 0},
        {"group fader", [&] { engine->setLeadGroupGainDB(20.0); }, 5.0F * level, 0},
        {"output", [&] { engine->setOutputChannel(first, 5); }, 5.0F * level, 5},
        {"pair",
         [&] {
             engine->setStereo(first, true);
             engine->setStereoPair(first, 3);
             engine->setPan(first, -3.0);
         },
         6.0F * level, 3},
        {"no input", [&] { engine->setInputChannel(first, std::nullopt); }, level, 3},
        {"mute", [&] { engine->setMuted(strips()[3].id, true); }, 0.0F, 3}};
    for (const auto& [what, edit, expected, channel] : edits) {
        edit();
        step();
        EXPECT_FLOAT_EQ(mainOutput->played[channel], expected) << what;
    }
}

TEST_F(MixerEngineTest, LoadsEverySessionWhileItRuns) {
    startBypassed();
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        const session::MixerDocumentData document = test::randomDocument(seed);
        engine->applyDocument(document);
        step(interface, 2);
        MixerEngine whole(document.channels.size(), services);
        whole.applyDocument(document);
        session::MixerDocumentData expected = document;
        if (!engine::isBufferSize(document.bufferSize)) expected.bufferSize = 512;
        EXPECT_EQ(whole.makeDocumentData(), expected) << seed;
        const session::MixerDocumentData part = engine->makeDocumentData();
        EXPECT_EQ(part.snapshots, document.snapshots) << seed;
        for (std::size_t i = 0; i < std::min(part.channels.size(), document.channels.size()); ++i)
            EXPECT_EQ(part.channels[i], document.channels[i]) << seed << ", channel " << i;
    }
}

TEST_F(MixerEngineTest, SendsTheMasterBusToADeviceOfItsOwn) {
    engine->selectMasterOutputDevice(device(monitor));
    engine->setMasterStereo(true);
    startBypassed();
    EXPECT_EQ(
        message(),
        "Warning: Interface (48000 Hz) and Monitor (44100 Hz) have different sample rates -- the master "
        "output may play back at the wrong pitch/speed until they match."
    );
    step();
    EXPECT_EQ(step(monitor), 1U);
    EXPECT_NE(masterOutput->played[1], 0.0F);
    // One clock runs away from the other: what is missing is silence, what is too much is dropped.
    EXPECT_EQ(step(monitor, 3), 3U);
    EXPECT_EQ(masterOutput->played[1], 0.0F);
    EXPECT_EQ(step(interface, 50), 50U);
    for (int block = 0; block < 9; ++block) {
        EXPECT_EQ(step(monitor), 1U);
        EXPECT_EQ(masterOutput->played[1] != 0.0F, block < 8) << block;
    }

    engine->stop();
    driver->control(monitor)->occupy();
    engine->start();
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(
        message(),
        "Failed to start master output device (Monitor): AudioUnitInitialize failed: OSStatus 560492391"
    );
    EXPECT_EQ(step(), 0U);
    engine->selectMasterOutputDevice(device(interface));
    engine->start();
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(message(), "");
}

TEST_F(MixerEngineTest, StartsWithTheMixThatItShows) {
    engine->selectDevice(device(interface));
    engine->setVocalRole(strips()[0].id, dsp::VocalRole::lead);
    engine->setVocalRole(strips()[1].id, dsp::VocalRole::backing);
    engine->setMasterOutputChannel(5);
    const auto played = [this] {
        std::vector<float> all;
        for (int block = 0; block < 20; ++block) {
            step();
            all.insert(all.end(), mainOutput->played.begin(), mainOutput->played.end());
        }
        return all;
    };
    engine->start();
    std::vector<float> before = played();
    const std::pair<const char*, std::function<void()>> edits[] = {
        {"target", [this] { engine->setMasterTargetDB(-30.0); }},
        {"lead group", [this] { engine->setLeadGroupGainDB(-6.0); }},
        {"backing group", [this] { engine->setBackingGroupGainDB(3.0); }},
        {"reference noise", [this] { engine->setReferenceNoiseGain(1.0); }},
        {"release", [this] { engine->setDuckerReleaseMs(20.0); }}};
    for (const auto& [what, edit] : edits) {
        engine->stop();
        engine->start();
        edit();
        const std::vector<float> edited = played();
        EXPECT_NE(edited, before) << what;
        engine->stop();
        engine->start();
        before = played();
        EXPECT_EQ(before, edited) << what;
    }
}

TEST_F(MixerEngineTest, WarnsOfTheMainDeviceFirst) {
    engine->selectDevice(device(interface));
    engine->selectMasterOutputDevice(device(monitor));
    engine->setMasterOutputRouting(master_output::Stereo{40, 41});
    engine->setBufferSize(64);
    keptBufferSize = 96;
    keptMonitorSize = 128;
    engine->start();
    EXPECT_TRUE(isRunning());
    EXPECT_THAT(
        message(),
        testing::ContainsRegex(
            "^This device is actually running a 96-frame.* Master Out was reset to .None. because its.* "
            "This device is actually running a 128-frame.* Warning: Interface"
        )
    );
}

TEST_F(MixerEngineTest, FindsOnlyTheChosenDevicesInANewList) {
    const audio::AudioDeviceInfo present = device(interface);
    audio::AudioDeviceInfo smaller = present;
    smaller.outputChannelCount = 2;
    audio::AudioDeviceInfo numbered = smaller;
    numbered.id = 1000;
    audio::AudioDeviceInfo renamed = smaller;
    renamed.uid = "virtual:another";
    for (const auto& [chosen, followed] :
         {std::pair(smaller, present), {numbered, numbered}, {renamed, renamed}}) {
        engine->selectDevice(chosen);
        engine->selectMasterOutputDevice(chosen);
        engine->refreshDevices();
        EXPECT_EQ(engine->state().selectedDevice.get(), followed) << chosen.uid << chosen.id;
        EXPECT_EQ(engine->state().masterOutputDevice.get(), followed) << chosen.uid << chosen.id;
    }
}

TEST_F(MixerEngineTest, RestartsOnlyForABufferSizeThatItOffers) {
    startBypassed();
    int starts = 0;
    const auto counting =
        engine->state().isRunning.subscribe([&starts](bool runs) { starts += runs ? 1 : 0; });
    engine->setBufferSize(100);
    EXPECT_EQ(engine->state().bufferSize.get(), 512);
    engine->setBufferSize(256);
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(step(), 1U);
    keptBufferSize = 96;
    engine->setBufferSize(64);
    EXPECT_THAT(message(), HasSubstr("This device is actually running a 96-frame buffer, not the 64 frames"));
    EXPECT_EQ(step(), 1U);
    EXPECT_EQ(mainOutput->played[0], static_cast<float>(test::steadyLevel));
}

TEST_F(MixerEngineTest, PlaysWithoutGapsIfADeviceHasMuchLongerCyclesThanRequested) {
    engine->setBufferSize(64);
    engine->selectMasterOutputDevice(device(monitor));
    engine->setMasterStereo(true);
    for (const auto& [mainSize, monitorSize] : {std::pair(1024U, 64U), {64U, 1024U}, {2048U, 1024U}}) {
        keptBufferSize = mainSize;
        keptMonitorSize = monitorSize;
        startBypassed();
        std::uint32_t played = 0;
        for (std::uint32_t captured = mainSize; captured <= 8192; captured += mainSize) {
            ASSERT_EQ(step(), 1U);
            EXPECT_EQ(mainOutput->playedLast[3], -static_cast<float>(test::steadyLevel)) << mainSize;
            for (; played + monitorSize <= captured; played += monitorSize) {
                ASSERT_EQ(step(monitor), 1U);
                EXPECT_NE(masterOutput->playedLast[1], 0.0F) << mainSize << " to " << monitorSize;
            }
        }
        engine->stop();
    }
}

TEST_F(MixerEngineTest, RecallsAllStripsInOneBlock) {
    MixerEngine wide(48, services);
    wide.setBufferSize(32);
    wide.refreshDevices();
    wide.selectDevice(device(interface));
    const std::vector<ChannelStrip> all = wide.state().channelStrips.get();
    wide.setInputChannel(all.back().id, 0);
    wide.setOutputChannel(all.back().id, 5);
    for (const double trim : {0.5, 1.0}) {
        for (const ChannelStrip& strip : {all.front(), all.back()}) {
            wide.setBypassed(strip.id, true);
            wide.setTrim(strip.id, trim);
        }
        wide.newSnapshot();
    }
    wide.start();
    std::atomic<bool> isOver = false;
    std::atomic<int> blocks = 0;
    int halfBlocks = 0;
    std::thread device([&] {
        for (; !isOver; ++blocks) {
            step();
            halfBlocks += mainOutput->played[0] == mainOutput->played[5] ? 0 : 1;
        }
    });
    for (int i = 0; i < 1000 || blocks < 20000; ++i)
        wide.recallSnapshot(i % 2);
    isOver = true;
    device.join();
    EXPECT_NE(mainOutput->played[0], 0.0F);
    EXPECT_EQ(halfBlocks, 0);
}

TEST_F(MixerEngineTest, ContinuesWithoutAMasterDeviceThatIsGone) {
    engine->selectMasterOutputDevice(device(monitor));
    engine->setMasterOutputChannel(1);
    startBypassed();
    const std::string atStart = message();
    driver->control(monitor)->die();
    while (message() == atStart) {
        mainThread.runPosted();
        std::this_thread::yield();
    }
    EXPECT_EQ(
        message(),
        "The master output device Monitor is gone, so the mix goes on without it; connect it again or "
        "select another device, then stop and start the mixer."
    );
    EXPECT_EQ(step(interface, 100), 100U);
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(mainOutput->played[0], static_cast<float>(test::steadyLevel));
    driver->control(monitor)->reappear();
    engine->stop();
    engine->start();
    step();
    EXPECT_EQ(step(monitor), 1U);
    EXPECT_NE(masterOutput->playedLast[1], 0.0F);
}

TEST_F(MixerEngineTest, PlaysWhatItShowsEvenIfASubscriberThrows) {
    startBypassed();
    const auto throwing =
        engine->state().channelStrips.subscribe([](const auto&) { throw std::runtime_error("as told"); });
    EXPECT_THROW(engine->setTrim(strips()[0].id, 0.25), std::runtime_error);
    EXPECT_EQ(strips()[0].trim, 0.25);
    step();
    EXPECT_FLOAT_EQ(mainOutput->played[0], static_cast<float>(test::steadyLevel * 0.25));
}

void play(platform::MIDIOwnSource& source, std::int64_t note) {
    source.send(std::array<std::uint8_t, 3>{0x90, static_cast<std::uint8_t>(note), 100});
}

/// Stores the mix as a scene that the note recalls.
void storeScene(
    MixerEngine& engine, test::ManualMainThread& mainThread, platform::MIDIOwnSource& source,
    std::int64_t note
) {
    engine.newSnapshot();
    engine.beginMIDILearn();
    play(source, note);
    mainThread.runPosted();
}

// From the driver's thread while blocks run; a block may not allocate.
TEST_F(MixerEngineTest, ComesToRestAfterAStormOfNotesWithTheLastOneRecalled) {
    constexpr std::int64_t sceneCount = 8;
    constexpr int noteCount = 50000;
    const auto keys = midiDriver->createSource("Keys").value();
    mainThread.runPosted();
    startBypassed();
    for (std::int64_t scene = 0; scene < sceneCount; ++scene) {
        engine->setTrim(strips()[0].id, static_cast<double>(scene + 1) / 8.0);
        storeScene(*engine, mainThread, *keys, scene);
    }
    std::vector<std::int64_t> recalled;
    const auto keeping = engine->state().currentSnapshotIndex.subscribe([&](const auto& index) {
        recalled.push_back(*index);
    });
    std::atomic<bool> isOver = false;
    std::thread player([&] {
        for (int i = 0; i < noteCount; ++i)
            play(*keys, i % (sceneCount + 2));
        play(*keys, 5);
        isOver = true;
    });
    while (!isOver) {
        mainThread.runPosted();
        EXPECT_EQ(step(), 1U);
    }
    player.join();
    mainThread.runPosted();
    ASSERT_FALSE(recalled.empty());
    EXPECT_EQ(recalled.back(), 5);
    step();
    EXPECT_FLOAT_EQ(mainOutput->played[0], static_cast<float>(test::steadyLevel * 6.0 / 8.0));
    log.flush();
    EXPECT_THAT(lines, testing::Contains(HasSubstr("Notes came faster than their scenes can be recalled; ")));
    recalled.clear();
    mainThread.advance(std::chrono::seconds(1));
    EXPECT_THAT(recalled, IsEmpty());
}

TEST_F(MixerEngineTest, RecallsTheScenesOfAFewNotesInOrderButOnlyTheLastOfMany) {
    const auto keys = midiDriver->createSource("Keys").value();
    for (int scene = 0; scene < 2; ++scene)
        storeScene(*engine, mainThread, *keys, scene);
    std::vector<std::int64_t> recalled;
    const auto keeping = engine->state().currentSnapshotIndex.subscribe([&](const auto& index) {
        recalled.push_back(*index);
    });
    const std::pair<int, std::vector<std::int64_t>> cases[] = {
        {1, {0}}, {8, {0, 1, 0, 1, 0, 1, 0, 1}}, {9, {0}}, {1000, {1}}};
    for (const auto& [count, expected] : cases) {
        for (int i = 0; i < count; ++i)
            play(*keys, i % 2);
        mainThread.runPosted();
        EXPECT_EQ(std::exchange(recalled, {}), expected) << count;
    }
}

TEST_F(MixerEngineTest, ReceivesTheNextNoteIfMemoryRanOutForOne) {
    const auto keys = midiDriver->createSource("Keys").value();
    mainThread.runPosted();
    engine->newSnapshot();
    int lostNotes = 0;
    for (std::size_t nth = 1;; ++nth) {
        try {
            const test::FailingAllocation failing(nth);
            keys->send(std::array<std::uint8_t, 3>{0x90, 1, 100});
            if (!failing.hasHappened()) break;
            ++lostNotes;
        } catch (const std::bad_alloc&) {
            // The sender's own.
        }
        mainThread.runPosted();
        engine->beginMIDILearn();
        keys->send(std::array<std::uint8_t, 3>{0x90, 60, 100});
        mainThread.runPosted();
        EXPECT_EQ(engine->state().midiLearnTargetIndex.get(), std::nullopt) << nth;
    }
    EXPECT_GT(lostNotes, 1);
}

TEST_F(MixerEngineTest, ReceivesNotesOfTheSelectedSourceOnTheMainThread) {
    const auto& sources = engine->state().availableMIDIDevices;
    auto keys = midiDriver->createSource("Keys").value();
    const auto pads = midiDriver->createSource("Pads").value();
    EXPECT_THAT(sources.get(), IsEmpty()) << "the main thread has not run";
    mainThread.runPosted();
    const auto playOnThird = [](platform::MIDIOwnSource& source, std::uint8_t note) {
        source.send(std::array<std::uint8_t, 3>{0x92, note, 100});
    };
    const auto trigger = [this] { return engine->state().snapshots.get().at(0).midiTrigger; };
    engine->newSnapshot();
    engine->beginMIDILearn();
    playOnThird(*keys, 60);
    EXPECT_FALSE(trigger()) << "the main thread has not run";
    mainThread.runPosted();
    EXPECT_EQ(trigger(), (session::MIDITrigger{2, 60}));
    engine->selectMIDIDevice(sources.get().at(1).id);
    engine->beginMIDILearn();
    playOnThird(*keys, 62);
    mainThread.runPosted();
    EXPECT_EQ(trigger(), (session::MIDITrigger{2, 60}));
    // A note on its way to an engine that is gone is dropped.
    std::optional<MixerEngine> other(std::in_place, 1, services);
    playOnThird(*pads, 63);
    other.reset();
    mainThread.runPosted();
    EXPECT_EQ(trigger(), (session::MIDITrigger{2, 63}));
    keys.reset();
    engine->refreshMIDIDevices();
    EXPECT_EQ(sources.get().size(), 1U);
}

} // namespace
