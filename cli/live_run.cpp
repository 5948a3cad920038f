#include "cli/live_run.h"

#include "audio/audio_device_manager.h"
#include "audio/find_device.h"
#include "cli/await_plugins.h"
#include "cli/buffer_size_keeper.h"
#include "cli/meter_bridge.h"
#include "cli/meter_output.h"
#include "cli/mix_setup.h"
#include "cli/peak_text.h"
#include "cli/printing.h"
#include "engine/mixer_engine.h"
#include "engine/session_files.h"
#include "machine/forced_end.h"
#include "machine/process.h"
#include "machine/signals.h"
#include "platform/base/abandoned.h"
#include "platform/desktop/sleep_inhibitor.h"
#include "platform/midi_services/system_midi_services.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace orvane::cli {

namespace {

using audio::AudioDeviceInfo;
using engine::MixerEngine;
using machine::AudioMachine;
using platform::Done;
using platform::Error;
using platform::Result;
using namespace std::chrono_literals;

constexpr auto meterInterval = 33333us;
/// Without a terminal, the lines of the meters are appended: one frame a second keeps logs short.
constexpr double plainLineSeconds = 1.0;
constexpr std::size_t mostStrips = 48;

void printSentence(const std::optional<std::string>& sentence) {
    if (sentence) printMessage(*sentence);
}

/// One run, from the choice of devices to the last meter.
class LiveRun final {
  public:
    LiveRun(const LiveRunOptions& runOptions, AudioMachine& audioMachine, platform::RunLoop& mainThread)
        : options(runOptions), machine(audioMachine), loop(mainThread) {}

    Result<Done> prepare() {
        std::optional<session::MixerDocumentData> document;
        if (options.session) {
            if (!std::filesystem::exists(*options.session))
                return Error{fmt::format(
                    "There is no session {0}; orvane-cli session --new 8 '{0}' makes one with 8 strips.",
                    options.session->string()
                )};
            sessionStamp = platform::stampOf(*options.session);
            auto read = engine::readSession(*options.session);
            if (!read) return read.error();
            document = std::move(read).value();
        }
        // The number of strips of an engine is fixed, but only an engine can list the devices that may
        // determine it.
        platform::SystemMIDIServices noMIDI({});
        MixerEngine scout(0, services(noMIDI));
        scout.refreshDevices();
        if (scout.state().lastError.get()) return Error{*scout.state().lastError.get()};
        const std::vector<AudioDeviceInfo>& devices = scout.state().availableDevices.get();
        const auto main = findDevice(devices, machine.mainUID);
        if (!main) return main.error();

        const std::size_t inputs = static_cast<std::size_t>(main.value().inputChannelCount);
        const std::size_t strips =
            options.channels.value_or(document ? document->channels.size() : std::min(inputs, mostStrips));
        if (strips < 1 || strips > mostStrips)
            return Error{fmt::format(
                "A live mix has 1 to {} strips, not {}; set the number with --channels.", mostStrips, strips
            )};
        if (document) channelsBeyond = engine::channelsBeyond(*document, strips);
        engine.emplace(strips, services(machine.midi()));
        // Prints what the session requests but cannot have; the mix continues without it.
        const auto toErrors = engine->state().lastError.subscribe(printSentence);
        engine->selectDevice(main.value());
        // Before the mix is set up: `start` reports a routing of the master bus that this device lacks.
        if (options.masterDevice) {
            const auto master = findDevice(devices, options.masterDevice);
            if (!master) return master.error();
            engine->selectMasterOutputDevice(master.value());
        }
        if (auto problem = setUpMix(*engine, document, options.outputOverrides)) return *std::move(problem);
        // The show begins without a plugin that hangs; the plugin joins once it is ready.
        awaitPlugins(*engine, loop, IfStuck::goOn, [] { return false; });
        chooseBufferSize(document.has_value());
        if (auto armed = armLearn(); !armed) return armed;
        return selectMIDISource();
    }

    Result<Done> run() {
        // Whatever needs threads comes before the audio starts: if none are left, the run fails here.
        const std::optional<std::string> advice = machine::realtimeAdvice(machine.priorityLender());
        if (options.meters != MeterStyle::none) meters.emplace(STDOUT_FILENO);
        // From here on, the run has state to restore at its end.
        const machine::InterruptGuard interrupt;
        engine->start();
        bufferSizes.noteChanges();
        const std::optional<std::string>& message = engine->state().lastError.get();
        if (!engine->state().isRunning.get()) {
            bufferSizes.restore();
            // The name of a device in use includes the program that uses it.
            return Error{fmt::format(
                "{}: {}", engine->state().selectedDevice.get()->name,
                message.value_or("The mixer did not start.")
            )};
        }
        if (message) printMessage(*message);
        printSentence(advice);
        if (const auto* const recorder = machine.recorder();
            recorder != nullptr && recorder->file() != *options.machine.record)
            printMessage(fmt::format(
                "{} already exists; the recording goes to {}.", options.machine.record->string(),
                recorder->file().string()
            ));
        platform::desktop::SleepInhibitor sleepInhibitor(loop, machine.log);
        sleepInhibitor.setHeld(true);
        const auto toErrors =
            engine->state().lastError.subscribe([this](const std::optional<std::string>& text) {
                if (text && engine->state().isRunning.get()) printMessage(*text);
            });
        // Without a window, only a MIDI note selects a scene, which also recalls it.
        const auto toRecalls = engine->state().currentSnapshotIndex.subscribe([this](const auto& index) {
            if (index) printMessage("Recalled snapshot " + numberAndName(*index));
        });
        const auto toLearning = engine->state().midiLearnTargetIndex.subscribe([this](const auto& index) {
            if (!index) printMessage("The note now recalls snapshot " + numberAndName(*options.learn - 1));
        });
        const auto start = std::chrono::steady_clock::now();
        const auto timer = loop.repeat(meterInterval, [this, start, &interrupt] {
            const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
            tick(elapsed.count());
            const bool isOver = options.seconds && elapsed.count() >= *options.seconds;
            if (isOver || interrupt.isInterrupted() || !engine->state().isRunning.get()) loop.quit();
        });
        loop.run();
        return finish();
    }

  private:
    /// Returns the device's current description: other programs may have released it since it was listed.
    Result<AudioDeviceInfo>
    findDevice(const std::vector<AudioDeviceInfo>& devices, const std::optional<std::string>& uid) {
        auto found = audio::findDevice(machine.hardware(), devices, uid);
        if (!found) return found;
        const auto now = audio::AudioDeviceManager(machine.hardware()).device(found.value().id);
        const AudioDeviceInfo& device = now ? now.value() : found.value();
        if (auto problem = audio::rateProblem(device, options.machine.sampleRate))
            return Error{*std::move(problem)};
        return device;
    }

    void chooseBufferSize(bool hasSession) {
        const auto present = bufferSizes.remember(*engine->state().selectedDevice.get());
        if (const auto& master = engine->state().masterOutputDevice.get()) bufferSizes.remember(*master);
        if (options.bufferSize)
            engine->setBufferSize(*options.bufferSize);
        else if (!hasSession && present)
            // Ignored if it is not offered.
            engine->setBufferSize(*present);
    }

    Result<Done> armLearn() {
        if (!options.learn) return Done{};
        engine->selectSnapshot(*options.learn - 1);
        engine->beginMIDILearn();
        if (engine->state().midiLearnTargetIndex.get()) return Done{};
        return Error{fmt::format("The session has no snapshot {} to learn a note for.", *options.learn)};
    }

    /// Returns for example "2: Loud".
    [[nodiscard]] std::string numberAndName(std::int64_t snapshot) const {
        const auto index = static_cast<std::size_t>(snapshot);
        return fmt::format("{}: {}", index + 1, engine->state().snapshots.get()[index].name);
    }

    Result<Done> selectMIDISource() {
        if (!options.midiSource) return Done{};
        const auto& sources = engine->state().availableMIDIDevices.get();
        if (std::ranges::find(sources, *options.midiSource, &midi::MIDIDeviceInfo::id) == sources.end())
            return Error{fmt::format(
                "There is no MIDI source {}; orvane-cli midi lists the sources.", *options.midiSource
            )};
        engine->selectMIDIDevice(options.midiSource);
        return Done{};
    }

    /// Writes the session as it is now to the file that it was read from.
    void save() {
        if (!options.session)
            return printMessage("The session has no file to save to; the mixer was started without --session."
            );
        const auto objection = engine::objectionToReplacing(*options.session, sessionStamp);
        if (objection && !options.force)
            return printMessage(fmt::format(
                "The session is not saved, because {}; run with --force to replace it.", *objection
            ));
        const auto written =
            engine::exportSession(engine->makeDocumentData(), *options.session, channelsBeyond);
        if (written) sessionStamp = platform::stampOf(*options.session);
        printMessage(
            written ? fmt::format("Saved the session to {}.", options.session->string())
                    : written.error().description
        );
    }

    /// Returns a new problem of the recording; absent if there is none.
    std::optional<std::string> checkRecording() {
        auto problem = machine.recorder() == nullptr ? std::nullopt : machine.recorder()->takeProblem();
        if (problem) recordingProblem = problem;
        return problem;
    }

    void tick(double seconds) {
        machine.log.flush();
        if (auto problem = checkRecording()) engine->report(*std::move(problem));
        if (machine::takeSaveSignal()) save();
        const double load = engine->meterModel().cpuLoad.get();
        peakLoad = std::max(peakLoad, load);
        sumOfLoads += load;
        ++ticks;
        xruns = std::max(xruns, engine->xrunCount());
        priority = std::max(priority, engine->realtimePriority());
        elapsedSeconds = seconds;
        if (meters) show(frameAt(seconds));
    }

    [[nodiscard]] engine::Services services(platform::MIDIServices& midi) {
        engine::Services all{machine.hardware(), midi, loop, machine.audioUnits(), machine.log};
        all.insertWorkers = options.insertWorkers;
        return all;
    }

    [[nodiscard]] MeterFrame frameAt(double seconds) {
        const audio::MeterModel& model = engine->meterModel();
        MeterFrame frame{
            .seconds = seconds,
            .masterLevel = model.masterMeter.get(),
            .masterGain = model.masterGain.get(),
            .referenceLevel = model.pinkNoiseLevel.get(),
            .masterPeak = model.masterPeak.get(),
            .outputPeaks = model.outputPeaks.get(),
            .cpuLoad = model.cpuLoad.get(),
            .xruns = engine->xrunCount()};
        const auto& strips = engine->state().channelStrips.get();
        const std::vector<audio::SignalPeak>& inputs = model.inputPeaks.get();
        for (std::size_t i = 0; i < strips.size(); ++i)
            frame.strips.push_back(
                {.name = strips[i].name,
                 .level = model.channelMeters.get()[i],
                 .gainReductionDB = model.channelGainReductionDB.get()[i],
                 .muted = strips[i].muted,
                 .bypassed = strips[i].bypassed,
                 .inputPeak = i < inputs.size() ? inputs[i] : audio::SignalPeak{}}
            );
        if (const auto current = engine->state().currentSnapshotIndex.get()) {
            const auto index = static_cast<std::size_t>(*current);
            const auto& scenes = engine->state().snapshots.get();
            if (index < scenes.size()) frame.scene = {.number = index + 1, .name = scenes[index].name};
        }
        return frame;
    }

    void show(const MeterFrame& frame) {
        if (options.meters == MeterStyle::json)
            meters->write(meterJSON(frame));
        else if (isTerminal)
            hasShown |= meters->write(hasShown ? meterTextOver(frame) : meterText(frame));
        else if (frame.seconds >= nextPlainLine) {
            nextPlainLine += plainLineSeconds;
            meters->write(meterText(frame));
        }
        if (const int error = meters->error(); error != 0) {
            meters.reset();
            printMessage(fmt::format(
                "The meters can no longer be written ({}); the mix continues without them.",
                std::generic_category().message(error)
            ));
        }
    }

    Result<Done> finish() {
        const bool died = !engine->state().isRunning.get();
        engine->stop();
        bufferSizes.restore();
        if (platform::isAnythingAbandoned()) printSentence(engine->state().lastError.get());
        meters.reset();
        machine.log.flush();
        const std::string overs = oversText(engine->meterModel().outputPeaks.get());
        printMessage(fmt::format(
            "Ran for {:.1f} s with {} xruns{}{}; load {:.1f} % on average, {:.1f} % at most; {}.",
            elapsedSeconds, xruns, overs.empty() ? "" : " and ", overs,
            ticks == 0 ? 0.0 : sumOfLoads / static_cast<double>(ticks) * 100.0, peakLoad * 100.0,
            priority > 0 ? fmt::format("real-time priority {}", priority) : "no real-time priority"
        ));
        if (died) return Error{engine->state().lastError.get().value_or("The mixer has stopped.")};
        checkRecording();
        if (recordingProblem) return Error{*recordingProblem};
        return Done{};
    }

    const LiveRunOptions& options;
    AudioMachine& machine;
    platform::RunLoop& loop;
    /// Must outlive the engine, which must have stopped before the sizes are restored.
    BufferSizeKeeper bufferSizes{machine.hardware()};
    std::optional<MixerEngine> engine;
    /// The channels of the session beyond the mixer's strips; they stay in its file.
    std::vector<session::ChannelSettingsData> channelsBeyond;
    /// The stamp of the session file when it was last read or written.
    std::optional<platform::FileStamp> sessionStamp;
    std::optional<std::string> recordingProblem;
    std::optional<MeterOutput> meters;
    const bool isTerminal = isatty(STDOUT_FILENO) == 1;
    bool hasShown = false;
    double nextPlainLine = 0.0;
    double elapsedSeconds = 0.0;
    double peakLoad = 0.0;
    double sumOfLoads = 0.0;
    std::size_t ticks = 0;
    std::uint32_t xruns = 0;
    int priority = 0;
};

} // namespace

int runLive(const LiveRunOptions& options) {
    const auto report = [](const Result<Done>& outcome) {
        return outcome ? 0 : fail(outcome.error().description);
    };
    machine::lockMemory();
    machine::EndDeadline deadline;
    platform::RunLoop loop;
    auto machine = machine::AudioMachine::make(options.machine);
    if (!machine) return report(machine.error());
    LiveRun run(options, *machine.value(), loop);
    Result<Done> outcome = run.prepare();
    if (outcome) outcome = run.run();
    // The log may explain a failure, so it is printed first.
    machine.value()->log.flush();
    const int exitCode = report(outcome);
    machine::endIfAbandoned(exitCode);
    deadline.arm(exitCode);
    return exitCode;
}

} // namespace orvane::cli
