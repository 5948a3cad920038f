#include "engine/mixer_engine.h"

#include "audio/audio_device_manager.h"
#include "engine/routing_operations.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace orvane::engine {

namespace {

using audio::AudioDeviceInfo;
using platform::Uuid;
using session::ChannelStrip;
using session::MasterSettings;
using Strips = std::vector<ChannelStrip>;

constexpr const char* masterResetWarning =
    "Master Out was reset to \"None\" because its previously-selected channel(s) don't exist on the current "
    "device — "
    "pick a new Master Out channel pair in the mixer if you want the master bus routed somewhere.";

/// Devices whose rates are further apart than this, in Hz, do not run in step.
constexpr double largestRateDifference = 1.0;

void append(std::string& warnings, const std::optional<std::string>& warning) {
    if (!warning) return;
    if (!warnings.empty()) warnings += ' ';
    warnings += *warning;
}

std::optional<std::string>
rateWarning(const AudioDeviceInfo& main, const std::optional<AudioDeviceInfo>& master) {
    if (!master || std::abs(master->sampleRate - main.sampleRate) <= largestRateDifference)
        return std::nullopt;
    return fmt::format(
        "Warning: {} ({} Hz) and {} ({} Hz) have different sample rates -- the master output may play back "
        "at the "
        "wrong pitch/speed until they match.",
        main.name, static_cast<std::int64_t>(main.sampleRate), master->name,
        static_cast<std::int64_t>(master->sampleRate)
    );
}

} // namespace

MixerEngine::MixerEngine(std::size_t channelCount, Services platformServices)
    : services(std::move(platformServices)),
      meters(channelCount),
      pluginOperations(
          {.state = published,
           .editStrip = [this](const Uuid& strip, const auto& edit) { editStrip(strip, edit); },
           .realtimeState = [this] { return running ? running->realtimeState().get() : nullptr; }},
          services
      ),
      meterTimer(services.mainThread, meters),
      standstillWatch(
          services.mainThread, services.clock,
          [this](const auto& state, bool standsStill) { reportStandstill(state, standsStill); }
      ),
      midiInput(services, published, [this](std::span<const midi::NoteMessage> notes) {
          handleMIDINotes(notes);
      }) {
    published.channelStrips.set(session::makeDefaultStrips(channelCount));
    midiInput.start();
}

MixerEngine::~MixerEngine() {
    running.reset();
    pluginOperations.rack().runHasStopped();
}

void MixerEngine::start() {
    if (published.isRunning.get()) return;
    startWhole([this] { startOrThrow(); });
}

void MixerEngine::startWhole(const std::function<void()>& begin) {
    try {
        begin();
    } catch (const std::bad_alloc&) {
        stop();
        published.lastError.set("Failed to start audio engine: there is not enough memory.");
    }
}

void MixerEngine::startOrThrow() {
    if (!published.selectedDevice.get()) {
        published.lastError.set("No audio device selected.");
        return;
    }
    // While the mixer was stopped, it did not learn of other rates or channels.
    describeChosenDevices();
    const bool masterWasReset = validateMasterOutputRouting();
    const std::vector<std::string> refusals = pluginOperations.rack().followSampleRate();
    RunningAudio::Devices devices{.main = *published.selectedDevice.get(), .master = {}};
    const std::optional<AudioDeviceInfo>& master = published.masterOutputDevice.get();
    if (master && master->id != devices.main.id) devices.master = master;

    auto started = RunningAudio::start(
        services.audioHardware, services.clock, devices, show(),
        {pluginOperations.insertTable(), services.insertWorkers}, makeObserver()
    );
    if (!started) {
        // What its devices have told by now is not to replace the reason.
        runIsOn.reset();
        published.lastError.set(started.error().description);
        return;
    }
    running = std::move(started).value();
    std::string warnings;
    append(warnings, running->mainWarning());
    if (masterWasReset) append(warnings, masterResetWarning);
    append(warnings, running->masterWarning());
    append(warnings, rateWarning(devices.main, devices.master));
    for (const std::string& refusal : refusals)
        append(warnings, refusal);
    published.isRunning.set(true);
    published.lastError.set(warnings.empty() ? std::nullopt : std::optional(warnings));
    meterTimer.start(running->realtimeState());
    standstillWatch.start(running->realtimeState());
}

void MixerEngine::stop() {
    runIsOn.reset();
    running.reset();
    published.isRunning.set(false);
    meterTimer.stop();
    standstillWatch.stop();
    pluginOperations.rack().runHasStopped();
}

void MixerEngine::setBufferSize(std::int64_t frameCount) {
    if (takeBufferSize(frameCount)) startWhole([this] { startOrThrow(); });
}

bool MixerEngine::takeBufferSize(std::int64_t frameCount) {
    if (!isBufferSize(frameCount)) return false;
    published.bufferSize.set(frameCount);
    if (!published.isRunning.get()) return false;
    stop();
    return true;
}

void MixerEngine::refreshDevices() {
    auto devices = audio::AudioDeviceManager(services.audioHardware).allDevices();
    if (!devices) {
        published.lastError.set("Failed to enumerate audio devices: " + devices.error().description());
        return;
    }
    std::erase_if(devices.value(), [](const AudioDeviceInfo& device) {
        return device.inputChannelCount < 1 && device.outputChannelCount < 1;
    });
    published.availableDevices.set(std::move(devices).value());
    published.deviceAdvice.set(services.deviceAdvice());
    for (const AudioDeviceInfo& device : published.availableDevices.get())
        updateChosenDevices(device);
}

void MixerEngine::describeChosenDevices() {
    audio::AudioDeviceManager manager(services.audioHardware);
    for (const auto* const chosen : {&published.selectedDevice, &published.masterOutputDevice})
        if (const auto& known = chosen->get())
            if (const auto device = manager.device(known->id)) updateChosenDevices(device.value());
}

void MixerEngine::updateChosenDevices(const AudioDeviceInfo& device) {
    for (auto* const chosen : {&published.selectedDevice, &published.masterOutputDevice}) {
        const std::optional<AudioDeviceInfo>& known = chosen->get();
        if (known && known->id == device.id && known->uid == device.uid && *known != device)
            chosen->set(device);
    }
}

void MixerEngine::selectDevice(const AudioDeviceInfo& device) {
    published.selectedDevice.set(device);
    editStrips([&device](Strips& strips) {
        assignDefaultRouting(strips, device.inputChannelCount, device.outputChannelCount);
    });
    validateMasterOutputRouting();
}

void MixerEngine::selectMasterOutputDevice(const std::optional<AudioDeviceInfo>& device) {
    published.masterOutputDevice.set(device);
    validateMasterOutputRouting();
}

void MixerEngine::refreshMIDIDevices() {
    midiInput.refreshDevices();
}

void MixerEngine::selectMIDIDevice(std::optional<std::int32_t> sourceID) {
    midiInput.select(sourceID);
}

double MixerEngine::bufferLatencyMs() const {
    const std::optional<AudioDeviceInfo>& device = published.selectedDevice.get();
    if (!device || !(device->sampleRate > 0.0)) return 0.0;
    return static_cast<double>(published.bufferSize.get()) / device->sampleRate * 1000.0;
}

std::int64_t MixerEngine::ringBufferBytes() const {
    constexpr std::int64_t bytesPerFrame = 32; // eight blocks of four bytes
    const std::optional<AudioDeviceInfo>& device = published.selectedDevice.get();
    if (!device) return 0;
    return std::max<std::int64_t>(device->outputChannelCount, 0) * published.bufferSize.get() * bytesPerFrame;
}

void MixerEngine::setName(const Uuid& strip, std::string name) {
    editStrip(strip, [&name](ChannelStrip& edited) { edited.name = std::move(name); });
}

void MixerEngine::setInputChannel(const Uuid& strip, std::optional<std::int64_t> channel) {
    editStrip(strip, [channel](ChannelStrip& edited) { edited.inputChannelIndex = channel; });
}

void MixerEngine::setOutputChannel(const Uuid& strip, std::optional<std::int64_t> channel) {
    editStrip(strip, [channel](ChannelStrip& edited) {
        edited.outputRouting = session::output::None{};
        if (channel) edited.outputRouting = session::output::Mono{*channel};
    });
}

void MixerEngine::setStereo(const Uuid& strip, bool on) {
    editStrip(strip, [on](ChannelStrip& edited) {
        edited.outputRouting = on ? asStereo(edited.outputRouting) : asMono(edited.outputRouting);
    });
}

void MixerEngine::setStereoPair(const Uuid& strip, std::int64_t left) {
    editStrip(strip, [left](ChannelStrip& edited) {
        edited.outputRouting = withStereoPair(edited.outputRouting, left);
    });
}

void MixerEngine::setPan(const Uuid& strip, double pan) {
    editStrip(strip, [pan](ChannelStrip& edited) {
        edited.outputRouting = withPan(edited.outputRouting, pan);
    });
}

void MixerEngine::setGenderMode(const Uuid& strip, dsp::GenderTriggerMode mode) {
    editStrip(strip, [mode](ChannelStrip& edited) { edited.genderMode = mode; });
}

void MixerEngine::setVocalRole(const Uuid& strip, dsp::VocalRole role) {
    editStrip(strip, [role](ChannelStrip& edited) { edited.vocalRole = role; });
}

void MixerEngine::setMuted(const Uuid& strip, bool muted) {
    editStrip(strip, [muted](ChannelStrip& edited) { edited.muted = muted; });
}

void MixerEngine::setBypassed(const Uuid& strip, bool bypassed) {
    editStrip(strip, [bypassed](ChannelStrip& edited) { edited.bypassed = bypassed; });
}

void MixerEngine::setTrim(const Uuid& strip, double trim) {
    editStrip(strip, [trim](ChannelStrip& edited) { edited.trim = trim; });
}

void MixerEngine::setMasterTargetDB(double targetDB) {
    editMaster([targetDB](MasterSettings& edited) { edited.levels.masterTargetDB = targetDB; });
}

void MixerEngine::setLeadGroupGainDB(double gainDB) {
    editMaster([gainDB](MasterSettings& edited) { edited.levels.leadGroupGainDB = gainDB; });
}

void MixerEngine::setBackingGroupGainDB(double gainDB) {
    editMaster([gainDB](MasterSettings& edited) { edited.levels.backingGroupGainDB = gainDB; });
}

void MixerEngine::setReferenceNoiseGain(double linearGain) {
    editMaster([linearGain](MasterSettings& edited) { edited.referenceNoiseGain = linearGain; });
}

void MixerEngine::setDuckerReleaseMs(double releaseMs) {
    editMaster([releaseMs](MasterSettings& edited) { edited.duckerReleaseMs = releaseMs; });
}

void MixerEngine::setMasterOutputRouting(const session::MasterOutputRouting& routing) {
    editMaster([&routing](MasterSettings& edited) { edited.masterOutputRouting = routing; });
}

void MixerEngine::setMasterOutputChannel(std::optional<std::int64_t> channel) {
    if (channel)
        setMasterOutputRouting(session::output::Mono{*channel});
    else
        setMasterOutputRouting(session::output::None{});
}

void MixerEngine::setMasterStereo(bool on) {
    const session::MasterOutputRouting& routing = published.master.get().masterOutputRouting;
    setMasterOutputRouting(on ? asStereo(routing) : asMono(routing));
}

void MixerEngine::setMasterStereoPair(std::int64_t left) {
    setMasterOutputRouting(withStereoPair(published.master.get().masterOutputRouting, left));
}

void MixerEngine::resetRoutingOneToOne() {
    const std::optional<AudioDeviceInfo>& device = published.selectedDevice.get();
    if (!device) return;
    editStrips([&device](Strips& strips) {
        engine::resetRoutingOneToOne(strips, device->inputChannelCount, device->outputChannelCount);
    });
}

void MixerEngine::allOutputsOff() {
    editStrips([](Strips& strips) {
        for (ChannelStrip& strip : strips)
            strip.outputRouting = session::output::None{};
    });
}

void MixerEngine::editMaster(const std::function<void(MasterSettings&)>& edit) {
    MasterSettings settings = published.master.get();
    edit(settings);
    setMaster(settings);
}

void MixerEngine::setMaster(const MasterSettings& settings) {
    if (running) running->setMaster(settings);
    if (settings.masterOutputRouting != published.master.get().masterOutputRouting)
        pushRouting(settings.masterOutputRouting);
    published.master.set(settings);
}

void MixerEngine::editStrip(const Uuid& strip, const std::function<void(ChannelStrip&)>& edit) {
    const Strips& strips = published.channelStrips.get();
    const auto found = std::ranges::find(strips, strip, &ChannelStrip::id);
    if (found == strips.end()) return;
    editStrips([&edit, index = found - strips.begin()](Strips& edited) {
        edit(edited[static_cast<std::size_t>(index)]);
    });
}

void MixerEngine::editStrips(const std::function<void(Strips&)>& edit) {
    Strips strips = published.channelStrips.get();
    edit(strips);
    try {
        published.channelStrips.set(std::move(strips));
    } catch (...) {
        // What is shown is heard, also where somebody who was told of it fails.
        pushStrips();
        throw;
    }
    pushStrips();
}

void MixerEngine::pushStrips() {
    pushRouting(published.master.get().masterOutputRouting);
    pluginOperations.pushInserts();
    if (running) running->automix().setSettings(automixSettings(published.channelStrips.get()));
}

void MixerEngine::pushRouting(const session::MasterOutputRouting& master) {
    if (running) engine::pushRouting(*running->realtimeState(), published.channelStrips.get(), master);
}

bool MixerEngine::validateMasterOutputRouting() {
    if (exists(published.master.get().masterOutputRouting, masterCapacity())) return false;
    setMasterOutputRouting(session::output::None{});
    return true;
}

std::int64_t MixerEngine::masterCapacity() const {
    if (const auto& master = published.masterOutputDevice.get()) return master->outputChannelCount;
    if (const auto& main = published.selectedDevice.get()) return main->outputChannelCount;
    return 0;
}

Show MixerEngine::show() const {
    return {
        .channelStrips = published.channelStrips.get(),
        .master = published.master.get(),
        .bufferSize = published.bufferSize.get()};
}

RunningAudio::Observer MixerEngine::makeObserver() {
    runIsOn = std::make_shared<const bool>(true);
    const auto onMainThread = [this, run = std::weak_ptr(runIsOn)](auto report) {
        services.mainThread.post([run, report = std::move(report)] {
            if (!run.expired()) report();
        });
    };
    return {
        .bufferSizeChanged =
            [this,
             onMainThread](RunningAudio::Role role, const AudioDeviceInfo& device, std::uint32_t frameCount) {
                onMainThread([=, this] { reportBufferSizeChange(role, device, frameCount); });
            },
        .sampleRateChanged = [this, onMainThread](const AudioDeviceInfo& device
                             ) { onMainThread([=, this] { followSampleRate(device); }); },
        .channelsLost = [this, onMainThread](const AudioDeviceInfo& device
                        ) { onMainThread([=, this] { reportLostChannels(device); }); },
        .deviceDied = [this, onMainThread](
                          RunningAudio::Role role, const AudioDeviceInfo& device
                      ) { onMainThread([=, this] { reportDeath(role, device); }); }};
}

void MixerEngine::reportBufferSizeChange(
    RunningAudio::Role role, const AudioDeviceInfo& device, std::uint32_t frameCount
) {
    const bool isMain = role == RunningAudio::Role::main;
    published.lastError.set(fmt::format(
        "{} buffer size changed to {} frames while running (likely another app also using {}) -- if you hear "
        "stutters, stop and restart the engine.{}",
        isMain ? "The audio device's" : "The master output device's", frameCount, device.name,
        isMain ? " Closing other apps that use the same device may help." : ""
    ));
}

void MixerEngine::followSampleRate(const AudioDeviceInfo& device) {
    refreshDevices();
    const auto& devices = published.availableDevices.get();
    const auto now = std::ranges::find(devices, device.id, &AudioDeviceInfo::id);
    if (now == devices.end() || now->sampleRate == device.sampleRate) return;
    std::string report = fmt::format(
        "The audio device {} has changed from {:.0f} to {:.0f} Hz, so the mixer has started again at the new "
        "rate.",
        device.name, device.sampleRate, now->sampleRate
    );
    stop();
    start();
    if (!published.isRunning.get()) return;
    append(report, published.lastError.get());
    published.lastError.set(std::move(report));
}

void MixerEngine::reportLostChannels(const AudioDeviceInfo& device) {
    published.lastError.set(fmt::format(
        "A part of the audio device {} is gone, and its channels are silent; connect it again, then stop and "
        "start the mixer.",
        device.name
    ));
}

void MixerEngine::reportStandstill(const audio::MixerRealtimeState& state, bool standsStill) {
    if (!standsStill) return published.lastError.set(std::nullopt);
    const auto insert = state.runningInsert();
    if (!insert)
        return published.lastError.set(fmt::format(
            "The audio device {} has asked for no sound for {:.0f} seconds; stop and start the mixer, or "
            "select another device.",
            published.selectedDevice.get()->name, StandstillWatch::longestStandstill
        ));
    published.lastError.set(fmt::format(
        "No sound has been mixed for {:.0f} seconds, because the plugin {} on the strip \"{}\" does not "
        "return from its processing; stop the mixer, and remove the plugin.",
        StandstillWatch::longestStandstill, insert->name, published.channelStrips.get()[insert->strip].name
    ));
}

void MixerEngine::reportDeath(RunningAudio::Role role, const AudioDeviceInfo& device) {
    if (role == RunningAudio::Role::master) {
        running->dropMaster();
        published.lastError.set(fmt::format(
            "The master output device {} is gone, so the mix goes on without it; connect it again or select "
            "another device, then stop and start the mixer.",
            device.name
        ));
        return;
    }
    stop();
    published.lastError.set(fmt::format(
        "The audio device {} is gone, so the mixer has stopped; connect it again or select another device.",
        device.name
    ));
}

} // namespace orvane::engine
