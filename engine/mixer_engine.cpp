#include "engine/mixer_engine.h"

#include "engine/buffer_sizes.h"
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
      mix(channelCount, published, services.mainThread),
      meters(channelCount),
      rack(mix, published, services),
      presets(services.applicationSupport, services.log),
      meterTimer(services.mainThread, meters),
      standstillWatch(
          services.mainThread, services.clock,
          [this](const auto& state, bool standsStill) { reportStandstill(state, standsStill); }
      ),
      midiInput(services, published, [this](std::span<const midi::NoteMessage> notes) {
          handleMIDINotes(notes);
      }) {
    midiInput.start();
}

void MixerEngine::start() {
    if (published.isRunning.get()) return;
    try {
        startOrThrow();
    } catch (const std::bad_alloc&) {
        stop();
        published.lastError.set("Failed to start audio engine: there is not enough memory.");
    }
    if (published.audioLoss.get()) reportFailedRestart();
}

void MixerEngine::restart() {
    stop();
    start();
    reportFailedRestart();
}

void MixerEngine::reportFailedRestart() {
    if (published.isRunning.get()) return;
    published.audioLoss.set(
        published.lastError.get().value_or("")
        + " -- check the device, then start again or select another device."
    );
}

void MixerEngine::startOrThrow() {
    if (!published.selectedDevice.get()) {
        published.lastError.set("No audio device selected.");
        return;
    }
    // While the mixer was stopped, it did not learn of other rates or channels.
    devices.describeChosen();
    const bool masterWasReset = devices.validateMasterOutputRouting();
    const std::vector<std::string> refusals = rack.followSampleRate();
    RunningAudio::Setup setup{
        .main = *published.selectedDevice.get(),
        .bufferSize = published.bufferSize.get(),
        .insertWorkers = services.insertWorkers};
    const std::optional<AudioDeviceInfo>& master = published.masterOutputDevice.get();
    if (master && master->id != setup.main.id) setup.master = master;
    std::optional<std::string> rates = rateWarning(setup.main, setup.master);

    auto run = std::make_shared<RunningAudio>(
        services.audioHardware, services.clock, std::move(setup), mix.values()
    );
    if (const auto started = run->start(observerOf(run)); !started) {
        // Its devices are free again, and can report nothing, before a subscriber learns the reason.
        run.reset();
        published.lastError.set(started.error().description);
        return;
    }
    std::string warnings;
    append(warnings, run->mainWarning());
    if (masterWasReset) append(warnings, masterResetWarning);
    append(warnings, run->masterWarning());
    append(warnings, rates);
    for (const std::string& refusal : refusals)
        append(warnings, refusal);
    const std::weak_ptr<audio::MixerRealtimeState> state = run->realtimeState();
    mix.setRun(std::move(run));
    published.audioLoss.set(std::nullopt);
    published.lastError.set(warnings.empty() ? std::nullopt : std::optional(warnings));
    meterTimer.start(state);
    standstillWatch.start(state);
}

void MixerEngine::stop() {
    mix.setRun(nullptr);
    meterTimer.stop();
    standstillWatch.stop();
    rack.runHasStopped();
    published.audioLoss.set(std::nullopt);
}

void MixerEngine::setBufferSize(std::int64_t frameCount) {
    if (takeBufferSize(frameCount)) restart();
}

bool MixerEngine::takeBufferSize(std::int64_t frameCount) {
    if (!isBufferSize(frameCount)) return false;
    published.bufferSize.set(frameCount);
    if (!published.isRunning.get()) return false;
    stop();
    return true;
}

void MixerEngine::setOutputChannel(const Uuid& strip, std::optional<std::int64_t> channel) {
    mix.editStrip(strip, [channel](ChannelStrip& edited) {
        edited.outputRouting = session::output::None{};
        if (channel) edited.outputRouting = session::output::Mono{*channel};
    });
}

void MixerEngine::setStereo(const Uuid& strip, bool on) {
    mix.editStrip(strip, [on](ChannelStrip& edited) {
        edited.outputRouting = on ? asStereo(edited.outputRouting) : asMono(edited.outputRouting);
    });
}

void MixerEngine::setStereoPair(const Uuid& strip, std::int64_t left) {
    mix.editStrip(strip, [left](ChannelStrip& edited) {
        edited.outputRouting = withStereoPair(edited.outputRouting, left);
    });
}

void MixerEngine::setPan(const Uuid& strip, double pan) {
    mix.editStrip(strip, [pan](ChannelStrip& edited) {
        edited.outputRouting = withPan(edited.outputRouting, pan);
    });
}

void MixerEngine::setOutputOptions(const dsp::OutputOptions& options) {
    mix.editMaster([&options](session::MasterSettings& edited) { edited.outputOptions = options; });
}

void MixerEngine::setMasterOutputRouting(const session::MasterOutputRouting& routing) {
    mix.editMaster([&routing](session::MasterSettings& edited) { edited.masterOutputRouting = routing; });
}

void MixerEngine::setMasterOutputChannel(std::optional<std::int64_t> channel) {
    if (channel)
        setMasterOutputRouting(session::output::Mono{*channel});
    else
        setMasterOutputRouting(session::output::None{});
}

void MixerEngine::setMasterStereo(bool on) {
    const session::MasterOutputRouting& routing = mix.master().masterOutputRouting;
    setMasterOutputRouting(on ? asStereo(routing) : asMono(routing));
}

void MixerEngine::setMasterStereoPair(std::int64_t left) {
    setMasterOutputRouting(withStereoPair(mix.master().masterOutputRouting, left));
}

void MixerEngine::resetRoutingOneToOne() {
    const std::optional<AudioDeviceInfo>& device = published.selectedDevice.get();
    if (!device) return;
    mix.editStrips([&device](Mix::Strips& strips) {
        engine::resetRoutingOneToOne(strips, device->inputChannelCount, device->outputChannelCount);
    });
}

void MixerEngine::allOutputsOff() {
    mix.editStrips([](Mix::Strips& strips) {
        for (ChannelStrip& strip : strips)
            strip.outputRouting = session::output::None{};
    });
}

RunningAudio::Observer MixerEngine::observerOf(const std::shared_ptr<RunningAudio>& observed) {
    const auto onMainThread =
        [this, post = platform::MainThread::Poster(services.mainThread, observed)](auto take) {
            return [this, post, take](const auto&... facts) {
                post([this, take, facts...] { (this->*take)(facts...); });
            };
        };
    return {
        .bufferSizeChanged = onMainThread(&MixerEngine::reportBufferSizeChange),
        .sampleRateChanged = onMainThread(&MixerEngine::followSampleRate),
        .channelsLost = onMainThread(&MixerEngine::reportLostChannels),
        .deviceDied = onMainThread(&MixerEngine::reportDeath)};
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
    const auto& listed = published.availableDevices.get();
    const auto now = std::ranges::find(listed, device.id, &AudioDeviceInfo::id);
    if (now == listed.end() || now->sampleRate == device.sampleRate) return;
    std::string report = fmt::format(
        "The audio device {} has changed from {:.0f} to {:.0f} Hz, so the mixer has started again at the new "
        "rate.",
        device.name, device.sampleRate, now->sampleRate
    );
    restart();
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

void MixerEngine::reportLoss(std::string sentence) {
    published.audioLoss.set(sentence);
    published.lastError.set(std::move(sentence));
}

void MixerEngine::reportStandstill(const audio::MixerRealtimeState& state, bool standsStill) {
    if (!standsStill) {
        published.audioLoss.set(std::nullopt);
        return published.lastError.set(std::nullopt);
    }
    const auto insert = state.runningInsert();
    if (!insert)
        return reportLoss(fmt::format(
            "The audio device {} has asked for no sound for {:.0f} seconds; stop and start the mixer, or "
            "select another device.",
            published.selectedDevice.get()->name, StandstillWatch::longestStandstill
        ));
    reportLoss(fmt::format(
        "No sound has been mixed for {:.0f} seconds, because the plugin {} on the strip \"{}\" does not "
        "return from its processing; stop the mixer, and remove the plugin.",
        StandstillWatch::longestStandstill, insert->name, mix.strips()[insert->strip].name
    ));
}

void MixerEngine::reportDeath(RunningAudio::Role role, const AudioDeviceInfo& device) {
    if (role == RunningAudio::Role::master) {
        mix.run()->dropMaster();
        published.lastError.set(fmt::format(
            "The master output device {} is gone, so the mix goes on without it; connect it again or select "
            "another device, then stop and start the mixer.",
            device.name
        ));
        return;
    }
    stop();
    reportLoss(fmt::format(
        "The audio device {} is gone, so the mixer has stopped; connect it again or select another device.",
        device.name
    ));
}

} // namespace orvane::engine
