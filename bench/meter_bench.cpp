// Measures the meters of a window with 48 strips: drives the model as its timer would, 30 times for each
// second, and paints every change in software, without a display.

#include "machine/audio_machine.h"
#include "platform/files/user_folders.h"
#include "ui/application.h"
#include "ui/mixer/mixer_view.h"
#include "ui/qt_main_thread.h"
#include "ui/windows/mixer_root_view.h"

#include <fmt/format.h>

#include <QAbstractButton>
#include <QApplication>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

namespace {

using namespace orvane;

constexpr std::size_t stripCount = 48;
constexpr int ticksPerSecond = 30;
constexpr int secondsOfMeters = 20;
constexpr double longestGainReductionDB = 26.0;
/// How long a peak stays, and how many different ones there are.
constexpr int ticksHeld = 60;
constexpr int peakSteps = 8;

/// Levels of people who talk in turns: syllables while they talk, room noise otherwise.
class Talk final {
  public:
    explicit Talk(std::size_t speakers) : phases(speakers) {
        for (Speaker& speaker : phases)
            speaker = {secondsBetween(0.0, 3.0), secondsBetween(0.5, 3.0), secondsBetween(0.0, 1.0)};
    }

    void speakTo(audio::MeterModel& model, int tick) {
        const double now = static_cast<double>(tick) / ticksPerSecond;
        std::vector<double> levels(phases.size());
        std::vector<double> reductions(phases.size());
        for (std::size_t i = 0; i < phases.size(); ++i) {
            const Speaker& speaker = phases[i];
            const bool talks = std::fmod(now + speaker.offset, 2.0 * speaker.turn) < speaker.turn;
            const double syllable = std::abs(std::sin((now + speaker.pitch) * 4.0 * 3.14159));
            levels[i] = std::pow(10.0, (talks ? -30.0 + 26.0 * syllable : -52.0) / 20.0);
            reductions[i] = talks ? 6.0 * syllable : longestGainReductionDB;
        }
        const double peak = static_cast<double>(tick / ticksHeld % peakSteps + 1) / peakSteps;
        const std::vector<audio::SignalPeak> peaks(phases.size(), {true, peak, 0});
        model.masterMeter.set(levels[0]);
        model.pinkNoiseLevel.set(levels[1]);
        model.cpuLoad.set(levels[2]);
        model.channelMeters.set(std::move(levels));
        model.channelGainReductionDB.set(std::move(reductions));
        model.inputPeaks.set(peaks);
        model.outputPeaks.set(peaks);
        model.masterPeak.set(peaks[0]);
        model.limiterReductionDB.set(0.0);
    }

  private:
    struct Speaker {
        double offset = 0.0;
        double turn = 1.0;
        double pitch = 0.0;
    };

    double secondsBetween(double least, double most) {
        return std::uniform_real_distribution(least, most)(random);
    }

    std::mt19937 random{7};
    std::vector<Speaker> phases;
};

/// Of the main thread: the audio runs on others meanwhile.
double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// A window whose meters are measured.
struct Window {
    QSize size;
    const char* layout;
    ui::StripPresentation presentation = ui::StripPresentation::setup;
};

/// The processor time per second of meters, with every change painted.
double measure(ui::MixerRootView& root, const Window& window) {
    root.resize(window.size);
    root.view().presentation().choose(window.presentation);
    const auto buttons = root.findChildren<QAbstractButton*>();
    (*std::ranges::find_if(buttons, [&](const QAbstractButton* button) {
        return button->text() == window.layout;
    }))->click();
    QApplication::processEvents();
    Talk talk(stripCount);
    const double before = processorSeconds();
    for (int tick = 0; tick < secondsOfMeters * ticksPerSecond; ++tick) {
        talk.speakTo(root.engine().meterModel(), tick);
        QApplication::processEvents();
    }
    return (processorSeconds() - before) / secondsOfMeters;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    setenv("ORVANE_DRIVERS", "virtual", 1);
    ui::Application application(argc, argv);
    const auto machine = machine::AudioMachine::make({});
    ui::QtMainThread mainThread;
    ui::MixerRootView root(
        stripCount,
        {machine.value()->hardware(), machine.value()->midi(), mainThread, machine.value()->audioUnits(),
         machine.value()->log},
        [] {}
    );
    root.show();
    fmt::print("Meters of {} strips at {} Hz, in per cent of one core:\n", stripCount, ticksPerSecond);
    root.engine().selectDevice(root.engine().state().availableDevices.get().at(0));
    root.engine().start();
    constexpr auto mix = ui::StripPresentation::mix;
    for (const Window& window :
         {Window{{7400, 1000}, "All 48"}, Window{{1280, 860}, "All 48"}, Window{{2600, 1300}, "32 (2 Rows)"},
          Window{{2600, 860}, "16 at a Time"}, Window{{4920, 1000}, "All 48", mix},
          Window{{1920, 1080}, "16 at a Time", mix}, Window{{1920, 1080}, "32 (2 Rows)", mix}})
        fmt::print(
            "{:>6} x {:<5} {:<14} {:<6} {:6.2f} %\n", window.size.width(), window.size.height(),
            window.layout, nameOf(window.presentation), measure(root, window) * 100.0
        );
}
