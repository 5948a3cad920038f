#include "engine/running_audio.h"

#include "audio/buffer_size.h"
#include "audio/render_pass.h"
#include "platform/base/abandoned.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace orvane::engine {

namespace {

using audio::CoreAudioIOEngine;

/// Every ring holds this many of the blocks that were asked for, and so many of the longest that a device
/// brings or takes.
constexpr std::int64_t ringBlocks = 8;
constexpr std::int64_t ringDeviceBlocks = 2;

std::int64_t atLeastOne(std::int64_t count) {
    return std::max<std::int64_t>(count, 1);
}

/// The rings of a device, where nobody has blocks longer than `longestBlock`.
audio::RingBuffers
makeRings(const audio::AudioDeviceInfo& device, std::int64_t bufferSize, std::uint32_t longestBlock) {
    const std::int64_t capacity = std::max(ringBlocks * bufferSize, ringDeviceBlocks * longestBlock);
    audio::RingBuffers rings;
    for (std::int64_t i = 0; i < atLeastOne(device.outputChannelCount); ++i)
        rings.push_back(std::make_unique<audio::RingBuffer>(capacity));
    return rings;
}

/// The I/O engine of a device: the main one captures and plays, the master one only plays.
std::unique_ptr<CoreAudioIOEngine> makeIO(
    platform::AudioHardware& hardware, const audio::AudioDeviceInfo& device, std::int64_t bufferSize,
    RunningAudio::Role role
) {
    const bool isMain = role == RunningAudio::Role::main;
    const CoreAudioIOEngine::Configuration configuration = {
        .sampleRate = device.sampleRate,
        .deviceID = device.id,
        .inputChannelCount = isMain ? atLeastOne(device.inputChannelCount) : 0,
        .outputChannelCount = atLeastOne(device.outputChannelCount),
        .framesPerSlice = static_cast<std::uint32_t>(bufferSize),
        .enableInput = isMain};
    return std::make_unique<CoreAudioIOEngine>(hardware, configuration);
}

/// Nobody where none are wanted or the system has no threads left: the I/O thread does without.
std::unique_ptr<audio::InsertWorkers>
makeWorkers(std::size_t count, std::size_t stripCount, platform::HostClock clock) {
    if (count == 0) return nullptr;
    try {
        return std::make_unique<audio::InsertWorkers>(
            count, stripCount, clock, audio::InsertWorkers::Limits{}
        );
    } catch (const std::system_error&) {
        return nullptr;
    }
}

/// Stops the I/O and frees it; false if a callback does not return, which has it kept for ever.
bool letGo(std::unique_ptr<CoreAudioIOEngine>& io) {
    if (!io || io->stop()) {
        io.reset();
        return true;
    }
    platform::abandon(std::move(io));
    return false;
}

} // namespace

void pushRouting(
    audio::MixerRealtimeState& state, const std::vector<session::ChannelStrip>& strips,
    const session::MasterOutputRouting& master
) {
    std::vector<std::optional<std::int64_t>> inputs;
    std::vector<session::OutputRouting> outputs;
    for (const session::ChannelStrip& strip : strips) {
        inputs.push_back(strip.inputChannelIndex);
        outputs.push_back(strip.outputRouting);
    }
    state.updateRouting(inputs, outputs, master);
}

platform::Result<std::unique_ptr<RunningAudio>> RunningAudio::start(
    platform::AudioHardware& hardware, platform::HostClock clock, const Devices& devices, const Show& show,
    Inserts inserts, const Observer& observer
) {
    std::unique_ptr<RunningAudio> run(new RunningAudio(hardware, clock, devices, show, std::move(inserts)));
    run->connect(devices, observer);
    auto begun = run->mainIO->setup();
    if (begun) {
        run->allocateFor(devices, show.bufferSize);
        begun = run->mainIO->start();
    }
    if (!begun) return platform::Error{"Failed to start audio engine: " + begun.error().description()};
    if (run->masterIO) {
        begun = run->masterIO->setup();
        if (begun) begun = run->masterIO->start();
        if (!begun)
            return platform::Error{fmt::format(
                "Failed to start master output device ({}): {}", devices.master->name,
                begun.error().description()
            )};
    }
    return run;
}

RunningAudio::RunningAudio(
    platform::AudioHardware& audioHardware, platform::HostClock clock, const Devices& devices,
    const Show& show, Inserts inserts
)
    : hardware(audioHardware),
      processor(std::make_shared<dsp::AutomixProcessor>(
          show.channelStrips.size() + 1, devices.main.sampleRate,
          devices.main.sampleRate / static_cast<double>(show.bufferSize), show.master.levels.masterTargetDB
      )),
      state(std::make_shared<audio::MixerRealtimeState>(show.channelStrips.size(), clock)) {
    mainIO = makeIO(hardware, devices.main, show.bufferSize, Role::main);
    setMaster(show.master);
    processor->setSettings(automixSettings(show.channelStrips));
    state->sampleRate = devices.main.sampleRate;
    if (devices.master) masterIO = makeIO(hardware, *devices.master, show.bufferSize, Role::master);
    pushRouting(*state, show.channelStrips, show.master.masterOutputRouting);
    state->insertWorkers = makeWorkers(inserts.workers, show.channelStrips.size(), clock);
    state->updatePlugins(std::move(inserts.table));
}

RunningAudio::~RunningAudio() {
    mainListeners.clear();
    masterListeners.clear();
    const bool mainHasEnded = letGo(mainIO);
    if (!letGo(masterIO)) masterHasEnded = false;
    const bool workersHaveEnded = !mainHasEnded || !state->insertWorkers || state->insertWorkers->end();
    if (mainHasEnded && masterHasEnded && workersHaveEnded) return;
    state->abandonInserts();
    platform::abandon(state);
    platform::abandon(processor);
}

void RunningAudio::allocateFor(const Devices& devices, std::int64_t bufferSize) {
    const std::uint32_t mainFrames = mainIO->maximumFrames();
    state->outputRingBuffers = makeRings(devices.main, bufferSize, mainFrames);
    if (devices.master) {
        // Its own set-up asks again, but only once the main device runs and fills these rings.
        const std::uint32_t masterFrames =
            audio::negotiateBufferSize(hardware, devices.master->id, static_cast<std::uint32_t>(bufferSize))
                .frameCount;
        state->masterOutputRingBuffers =
            makeRings(*devices.master, bufferSize, std::max(mainFrames, masterFrames));
    }
    processor->ensureScratch(mainFrames);
    state->ensureScratch(mainFrames);
}

void RunningAudio::connect(const Devices& devices, const Observer& observer) {
    mainIO->inputHandler = [processor = processor, state = state](auto captured, std::size_t frameCount) {
        audio::renderPass(captured, frameCount, *processor, *state);
    };
    mainIO->outputProvider = [state = state](auto outputs, std::size_t frameCount) {
        audio::outputPull(state->outputRingBuffers, outputs, frameCount);
    };
    mainIO->onDeviceBufferSizeChangedExternally = [observer,
                                                   device = devices.main](std::uint32_t frameCount) {
        observer.bufferSizeChanged(Role::main, device, frameCount);
    };
    mainListeners = watch(Role::main, devices.main, observer);
    if (!masterIO) return;
    masterIO->outputProvider = [state = state](auto outputs, std::size_t frameCount) {
        audio::outputPull(state->masterOutputRingBuffers, outputs, frameCount);
    };
    masterIO->onDeviceBufferSizeChangedExternally = [observer,
                                                     device = *devices.master](std::uint32_t frameCount) {
        observer.bufferSizeChanged(Role::master, device, frameCount);
    };
    masterListeners = watch(Role::master, *devices.master, observer);
}

RunningAudio::Listeners
RunningAudio::watch(Role role, const audio::AudioDeviceInfo& device, const Observer& observer) {
    Listeners listeners;
    const auto listen = [&](platform::AudioDeviceChange change, std::function<void()> notify) {
        auto listener = hardware.AudioObjectAddPropertyListenerBlock(device.id, change, std::move(notify));
        // A device that cannot be watched is played all the same.
        if (listener) listeners.push_back(std::move(listener).value());
    };
    listen(platform::AudioDeviceChange::died, [=] { observer.deviceDied(role, device); });
    listen(platform::AudioDeviceChange::sampleRate, [=] { observer.sampleRateChanged(device); });
    listen(platform::AudioDeviceChange::lostChannels, [=] { observer.channelsLost(device); });
    return listeners;
}

void RunningAudio::setMaster(const session::MasterSettings& settings) {
    processor->setMasterTargetDB(settings.levels.masterTargetDB);
    processor->setLeadGroupGainDB(settings.levels.leadGroupGainDB);
    processor->setBackingGroupGainDB(settings.levels.backingGroupGainDB);
    processor->setReleaseMs(settings.duckerReleaseMs);
    state->setNoiseGain(settings.referenceNoiseGain);
}

void RunningAudio::dropMaster() {
    masterListeners.clear();
    if (masterIO) droppedXRuns += masterIO->xrunCount();
    masterHasEnded = letGo(masterIO);
}

std::optional<std::string> RunningAudio::masterWarning() const {
    return masterIO ? masterIO->setupWarning() : std::nullopt;
}

std::uint32_t RunningAudio::xrunCount() const {
    return mainIO->xrunCount() + droppedXRuns + (masterIO ? masterIO->xrunCount() : 0);
}

} // namespace orvane::engine
