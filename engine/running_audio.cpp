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

/// The rings of a device for blocks of up to `longestBlock` frames.
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

/// Null if none are wanted or the system has no threads left: the I/O thread does without.
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

RunningAudio::RunningAudio(
    platform::AudioHardware& audioHardware, platform::HostClock clock, Setup runSetup, const MixValues& mix
)
    : hardware(audioHardware),
      setup(std::move(runSetup)),
      processor(std::make_shared<dsp::AutomixProcessor>(
          mix.channelStrips.size() + 1, setup.main.sampleRate,
          setup.main.sampleRate / static_cast<double>(setup.bufferSize), mix.master.levels.masterTargetDB
      )),
      state(std::make_shared<audio::MixerRealtimeState>(mix.channelStrips.size(), clock)) {
    mainIO = makeIO(hardware, setup.main, setup.bufferSize, Role::main);
    state->limiter = std::make_unique<dsp::TruePeakLimiter>(setup.main.sampleRate);
    setMaster(mix.master);
    processor->setSettings(automixSettings(mix.channelStrips));
    state->sampleRate = setup.main.sampleRate;
    if (setup.master) masterIO = makeIO(hardware, *setup.master, setup.bufferSize, Role::master);
    setRouting(mix.channelStrips, mix.master.masterOutputRouting);
    state->insertWorkers = makeWorkers(setup.insertWorkers, mix.channelStrips.size(), clock);
    state->updatePlugins(insertTable(mix.channelStrips, mix.plugins));
}

platform::Result<platform::Done> RunningAudio::start(const Observer& observer) {
    connect(observer);
    auto begun = mainIO->setup();
    if (begun) {
        allocate();
        begun = mainIO->start();
    }
    if (!begun) return platform::Error{"Failed to start audio engine: " + begun.error().description()};
    if (!masterIO) return platform::Done{};
    begun = masterIO->setup();
    if (begun) begun = masterIO->start();
    if (begun) return platform::Done{};
    return platform::Error{fmt::format(
        "Failed to start master output device ({}): {}", setup.master->name, begun.error().description()
    )};
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

void RunningAudio::allocate() {
    const std::uint32_t mainFrames = mainIO->maximumFrames();
    state->outputRingBuffers = makeRings(setup.main, setup.bufferSize, mainFrames);
    if (setup.master) {
        // Its own set-up asks again, but only once the main device runs and fills these rings.
        const std::uint32_t masterFrames =
            audio::negotiateBufferSize(
                hardware, setup.master->id, static_cast<std::uint32_t>(setup.bufferSize)
            )
                .frameCount;
        state->masterOutputRingBuffers =
            makeRings(*setup.master, setup.bufferSize, std::max(mainFrames, masterFrames));
    }
    processor->ensureScratch(mainFrames);
    state->ensureScratch(mainFrames);
}

void RunningAudio::connect(const Observer& observer) {
    mainIO->inputHandler = [processor = processor, state = state](auto captured, std::size_t frameCount) {
        audio::renderPass(captured, frameCount, *processor, *state);
    };
    mainIO->outputProvider = [state = state](auto outputs, std::size_t frameCount) {
        audio::outputPull(state->outputRingBuffers, outputs, frameCount);
    };
    mainIO->onDeviceBufferSizeChangedExternally = [observer, device = setup.main](std::uint32_t frameCount) {
        observer.bufferSizeChanged(Role::main, device, frameCount);
    };
    mainListeners = watch(Role::main, setup.main, observer);
    if (!masterIO) return;
    masterIO->outputProvider = [state = state](auto outputs, std::size_t frameCount) {
        audio::outputPull(state->masterOutputRingBuffers, outputs, frameCount);
    };
    masterIO->onDeviceBufferSizeChangedExternally = [observer,
                                                     device = *setup.master](std::uint32_t frameCount) {
        observer.bufferSizeChanged(Role::master, device, frameCount);
    };
    masterListeners = watch(Role::master, *setup.master, observer);
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
    processor->setOutputOptions(settings.outputOptions);
    state->limiter->setCeiling(settings.outputOptions.limiterCeilingDBTP);
    state->setNoiseGain(settings.referenceNoiseGain);
}

void RunningAudio::setRouting(
    const std::vector<session::ChannelStrip>& strips, const session::MasterOutputRouting& master
) {
    std::vector<std::optional<std::int64_t>> inputs;
    std::vector<session::OutputRouting> outputs;
    for (const session::ChannelStrip& strip : strips) {
        inputs.push_back(strip.inputChannelIndex);
        outputs.push_back(strip.outputRouting);
    }
    state->updateRouting(inputs, outputs, master);
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
