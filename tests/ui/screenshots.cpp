// Takes pictures of the window in each of its states for visual inspection: fills the screen, plays the demo
// and saves the screen. Usage: orvane_screenshots FOLDER [protanopia | deuteranopia]

#include "machine/audio_machine.h"
#include "platform/files/preferences.h"
#include "ui/application.h"
#include "ui/mixer/mixer_view.h"
#include "ui/qt_main_thread.h"
#include "ui/strip/plugin_slot_view.h"
#include "ui/theme/tool_tips.h"
#include "ui/windows/orvane_app.h"
#include "ui/windows/plugin_editor_windows.h"

#include "colour_vision.h"
#include "widgets.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QTest>

#include <cstdlib>
#include <memory>
#include <variant>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

class Photographer final {
  public:
    /// `vision`: see `ColourVision`.
    Photographer(const QString& into, const QString& vision) : folder(into), colours(vision) {
        setenv("ORVANE_DRIVERS", "virtual", 1);
        machine = std::move(machine::AudioMachine::make({})).value();
    }

    void takeAll() {
        open(0);
        take("picker");
        open(8);
        take("stopped-8");
        takeRunning();
        choose(StripPresentation::mix);
        awaitSpeech();
        take("mix-8");
        choose(StripPresentation::setup);
        takeSheets();
        takeWindows();
        open(24);
        take("paginated-24");
        open(48);
        take("paginated-48");
        press("32 (2 Rows)");
        take("two-rows-48");
        press("All 48");
        take("all-48");
        choose(StripPresentation::mix);
        take("mix-48");
        press("32 (2 Rows)");
        take("mix-two-rows-48");
    }

  private:
    void open(std::int64_t channels) {
        window.reset();
        window = std::make_unique<ORVANEApp>(
            ORVANEApp::Parts{
                {.audioHardware = machine->hardware(),
                 .midiServices = machine->midi(),
                 .mainThread = mainThread,
                 .audioUnitHost = machine->audioUnits(),
                 .log = machine->log,
                 .editorWindows = &editorWindows},
                preferences},
            LaunchOptions{.channels = channels, .device = "virtual:panel", .start = true}
        );
        window->showFullScreen();
        waitUntil([this] { return QTest::qWaitForWindowActive(window.get(), 100); });
        if (channels == 0) return;
        if (channels == 8) engine().stop();
    }

    [[nodiscard]] engine::MixerEngine& engine() { return window->mixerRootView()->engine(); }
    [[nodiscard]] platform::Uuid strip(std::size_t index) {
        return engine().state().channelStrips.get().at(index).id;
    }

    template <class Condition>
    static void waitUntil(Condition condition) {
        if (!QTest::qWaitFor(condition, 30000)) throw std::runtime_error("What was waited for did not come.");
    }

    void choose(StripPresentation presentation) {
        window->mixerRootView()->view().presentation().choose(presentation);
    }
    void press(const char* button) { buttonOf(*window, QString::fromUtf8(button)).click(); }

    void load(std::size_t slot, const char* name, std::size_t stripIndex) {
        for (const auto& component : engine().availableInsertComponents())
            if (component.name.find(name) != std::string::npos)
                return engine().loadPlugin(component, slot, strip(stripIndex));
        throw std::runtime_error(std::string("There is no plugin ") + name);
    }
    /// A plugin that is not installed.
    void loadMissing(std::size_t slot, std::size_t stripIndex) {
        platform::AVAudioUnitComponent missing;
        missing.name = "Plate Reverb";
        missing.audioComponentDescription.componentSubType = 1;
        engine().loadPlugin(missing, slot, strip(stripIndex));
    }
    [[nodiscard]] bool isLoading() {
        for (const auto& [slot, state] : engine().state().pluginLoadStates.get())
            if (std::holds_alternative<plugins::load_state::Loading>(state)) return true;
        return false;
    }

    void takeRunning() {
        const char* const names[] = {"Chair", "Anna", "Ben", "Clara", "Audience", "Remote", "Music", "Spare"};
        for (std::size_t index = 0; index < std::size(names); ++index)
            engine().setName(strip(index), names[index]);
        engine().setStereo(strip(6), true);
        engine().setBypassed(strip(6), true);
        engine().setMuted(strip(7), true);
        engine().setTrim(strip(1), 1.4);
        engine().setReferenceNoiseGain(0.4);
        load(0, "Equalizer Mono", 1);
        load(1, "MDA Limiter", 1);
        loadMissing(2, 1);
        engine().setPluginBypassed(true, 0, strip(1));
        load(0, "Equalizer Mono", 2);
        waitUntil([this] { return !isLoading(); });
        engine().start();
        choose(StripPresentation::setup);
        awaitSpeech();
        take("running-8");
    }

    /// Waits until the first speaker talks and the others are turned down.
    void awaitSpeech() {
        waitUntil([this] {
            const audio::MeterModel& meters = engine().meterModel();
            const auto& reductions = meters.channelGainReductionDB.get();
            return reductions.size() == 8 && reductions[1] > 6.0 && meters.channelMeters.get()[0] > 0.1;
        });
    }

    void takeSheets() {
        for (int scene = 0; scene < 3; ++scene)
            engine().newSnapshot();
        const char* const sheets[] = {"Snapshots",     "Output…",    "Audio / MIDI Devices",
                                      "Clear Outputs", "8 Channels", "Load"};
        for (const char* sheet : sheets) {
            press(sheet);
            take(QString(sheet).toLower().remove(QChar(u'…')).replace(" / ", "-").replace(' ', '-'));
            closeDialogs();
        }
        PluginSlotView& slot = *viewsIn<PluginSlotView>(*window).at(10);
        for (PluginSlotView* each : viewsIn<PluginSlotView>(*window))
            if (each->text().isEmpty()) {
                each->click();
                break;
            }
        take("plugin-picker");
        closeDialogs();
        QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, slot.mapToGlobal(QPoint(60, 12)));
        QApplication::sendEvent(&slot, &event);
        for (QMenu* menu : slot.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly))
            menu->setActiveAction(menu->actions().at(1));
        take("plugin-menu");
        for (QMenu* menu : slot.findChildren<QMenu*>())
            menu->close();
    }

    void takeWindows() {
        for (const QAction* menu : window->menuBar()->actions())
            for (QAction* item : menu->menu()->actions())
                if (item->text() == "About ORVANE" || item->text() == "ORVANE Help") {
                    item->trigger();
                    take(item->text().toLower().replace(' ', '-'));
                    closeOthers();
                }
        engine().openPluginEditor(0, strip(1));
        waitUntil([this] { return others().size() == 1; });
        take("plugin-editor");
        closeOthers();
    }

    void closeDialogs() {
        for (QDialog* dialog : window->findChildren<QDialog*>())
            dialog->reject();
        deleteWhatIsDone();
    }
    [[nodiscard]] QWidgetList others() const {
        QWidgetList visible;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top != window.get() && top->isVisible()) visible.append(top);
        return visible;
    }
    void closeOthers() {
        for (QWidget* other : others())
            other->close();
    }

    void take(const QString& name) {
        // The new window has been painted, and the window manager has placed it.
        QTest::qWait(settlingTimeInMs);
        const QString path = folder + '/' + name + ".png";
        if (!colours.seen(QGuiApplication::primaryScreen()->grabWindow().toImage()).save(path))
            throw std::runtime_error("No picture could be written to " + path.toStdString());
    }

    static constexpr int settlingTimeInMs = 700;

    const QString folder;
    const ColourVision colours;
    QtMainThread mainThread;
    platform::InMemoryPreferences preferences;
    PluginEditorWindows editorWindows;
    std::unique_ptr<machine::AudioMachine> machine;
    std::unique_ptr<ORVANEApp> window;
};

} // namespace

int main(int argc, char** argv) {
    ui::Application application(argc, argv);
    if (argc < 2 || argc > 3 || !QDir().mkpath(argv[1])) return EXIT_FAILURE;
    Photographer(argv[1], argc == 3 ? argv[2] : "usual").takeAll();
}
