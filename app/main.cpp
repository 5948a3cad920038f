#include "app/command_line.h"
#include "app/desktop_services.h"
#include "app/display.h"
#include "app/managed_session.h"
#include "engine/session_files.h"
#include "machine/audio_machine.h"
#include "machine/forced_end.h"
#include "machine/process.h"
#include "machine/signals.h"
#include "platform/files/preferences.h"
#include "platform/files/user_folders.h"
#include "ui/application.h"
#include "ui/qt_main_thread.h"
#include "ui/theme/symbols.h"
#include "ui/windows/orvane_app.h"
#include "ui/windows/plugin_editor_windows.h"

#include <QApplication>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace {

using namespace orvane;
using namespace std::chrono_literals;

/// How often the audio threads' log lines are written and signals are checked.
constexpr auto housekeepingInterval = 50ms;
/// How often changes are reported to the session manager; each check asks every plugin for its state.
constexpr auto changesInterval = 2s;
constexpr std::string_view unsavedChanges =
    "A signal ended the program while its session had changes that were not saved; they are lost. Send "
    "SIGUSR1 first to save a session to its file.";

[[noreturn]] void endWithoutDisplay() {
    app::printMessage("There is no display to open a window on; orvane-cli run mixes without one.");
    std::_Exit(EXIT_FAILURE);
}

/// Qt aborts if it cannot use the display; this prints the program's own message first.
void reportNoDisplay(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*text*/) {
    if (type == QtFatalMsg) endWithoutDisplay();
}

std::unique_ptr<QApplication> makeApplication(int& argc, char** argv) {
    if (!app::hasDisplay()) endWithoutDisplay();
    const QtMessageHandler usual = qInstallMessageHandler(reportNoDisplay);
    auto application = std::make_unique<ui::Application>(argc, argv);
    qInstallMessageHandler(usual);
    QApplication::setApplicationName(QStringLiteral("orvane"));
    QApplication::setApplicationVersion(QStringLiteral(ORVANE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("app.orvane.mixer"));
    QApplication::setWindowIcon(ui::applicationIcon());
    return application;
}

platform::FilePreferences makePreferences() {
    auto folder = platform::configurationDirectory();
    if (folder) *folder /= "orvane/preferences";
    return platform::FilePreferences(std::move(folder));
}

/// Shows and logs a problem of the recording. Returns whether there was one.
bool reportRecording(machine::AudioMachine& audioMachine, const ui::ORVANEApp* window) {
    auto problem = audioMachine.recorder() == nullptr ? std::nullopt : audioMachine.recorder()->takeProblem();
    if (!problem) return false;
    audioMachine.log.post(platform::LogLevel::error, "recording", {*problem});
    if (window != nullptr && window->mixerRootView() != nullptr)
        window->mixerRootView()->engine().report(*std::move(problem));
    return true;
}

/// Runs the window until it is closed or a signal ends the program, then arms the deadline. Returns the exit
/// code.
int run(
    app::CommandLine line, machine::AudioMachine& audioMachine, app::ManagedSession* managed,
    machine::EndDeadline& deadline
) {
    std::vector<std::string> problems;
    if (managed != nullptr && !managed->isStored()) {
        line.launch.sessionFile = managed->file();
    } else if (line.session) {
        auto session = engine::readSession(*line.session);
        if (session) {
            line.launch.session = std::move(session).value();
            line.launch.sessionFile = std::filesystem::absolute(*line.session);
        } else {
            problems.push_back(session.error().description);
            if (managed != nullptr) managed->refuse(problems.back());
        }
    }
    line.launch.device = audioMachine.mainUID;
    line.launch.sampleRate = line.machine.sampleRate;

    ui::QtMainThread mainThread;
    platform::FilePreferences preferences = makePreferences();
    const machine::InterruptGuard interrupt;
    ui::PluginEditorWindows editorWindows;
    app::DesktopServices desktop(mainThread, audioMachine.log);
    ui::ORVANEApp window(
        {.services =
             {.audioHardware = audioMachine.hardware(),
              .midiServices = audioMachine.midi(),
              .mainThread = mainThread,
              .audioUnitHost = audioMachine.audioUnits(),
              .log = audioMachine.log,
              .applicationSupport = platform::applicationSupportDirectory(),
              .editorWindows = &editorWindows,
              .insertWorkers = line.insertWorkers},
         .preferences = preferences,
         .onMixer = [&desktop](const engine::EngineState* mixer) { desktop.follow(mixer); }},
        std::move(line.launch)
    );
    bool hasRecordingFailed = false;
    const auto housekeeping = mainThread.repeat(housekeepingInterval, [&] {
        audioMachine.log.flush();
        if (interrupt.isInterrupted()) {
            if (window.isUnsaved()) app::printMessage(unsavedChanges);
            QCoreApplication::exit();
        }
        hasRecordingFailed |= reportRecording(audioMachine, &window);
        if (machine::takeSaveSignal()) window.saveInPlace();
        if (managed != nullptr) managed->poll();
    });
    std::unique_ptr<platform::MainThreadTimer> watching;
    if (managed != nullptr) {
        managed->serve(window);
        watching = mainThread.repeat(changesInterval, [&] { managed->reportChanges(window); });
    }
    window.show();
    window.showProblems(problems);
    const int exitCode = QApplication::exec();
    audioMachine.cancelScan();
    deadline.arm(exitCode);
    return hasRecordingFailed ? EXIT_FAILURE : exitCode;
}

} // namespace

int main(int argc, char** argv) {
    // A request to save that arrives during startup must not end the program.
    machine::keepSaveSignal();
    machine::prepareProcess();
    auto line = app::readCommandLine(argc, argv);
    if (const int* const exitCode = std::get_if<int>(&line)) return *exitCode;
    machine::lockMemory();
    machine::EndDeadline deadline;
    auto& options = std::get<app::CommandLine>(line);
    const auto application = makeApplication(argc, argv);
    const auto managed = app::ManagedSession::join(argv[0]);
    if (managed) {
        options.session = managed->file();
        options.machine.clientName = managed->clientName();
    }
    auto audioMachine = machine::AudioMachine::make(options.machine);
    if (!audioMachine) {
        app::printMessage(audioMachine.error().description);
        if (managed) managed->refuse(audioMachine.error().description);
        return EXIT_FAILURE;
    }
    if (const auto advice = machine::realtimeAdvice(audioMachine.value()->priorityLender()))
        app::printMessage(*advice);
    int exitCode = run(std::move(options), *audioMachine.value(), managed.get(), deadline);
    if (reportRecording(*audioMachine.value(), nullptr)) exitCode = EXIT_FAILURE;
    audioMachine.value()->log.flush();
    machine::endIfAbandoned(exitCode);
    return exitCode;
}
