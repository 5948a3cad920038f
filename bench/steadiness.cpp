// Runs the mixer live under constant edits while another process keeps the computer busy, and reports the
// duration and lateness of every block and the cause of each missed one.

#include "bench_mixer.h"
#include "cycle_times.h"
#include "histogram_plot.h"
#include "restless_operator.h"
#include "timed_driver.h"

#include "cli/progress_bar.h"
#include "platform/jack/jack_audio_driver.h"
#include "platform/pipewire/pipewire_audio_driver.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace orvane::bench;
using namespace std::chrono_literals;
namespace platform = orvane::platform;

constexpr std::size_t stripCount = 48;
constexpr double sampleRate = 48000.0;

struct Options {
    std::string driver = "virtual";
    double seconds = 600.0;
    std::int64_t frames = 64;
    std::string plugin = "MDA Limiter";
    std::string plot;
    std::size_t insertWorkers = 0;
    bool isAlone = false;
};

/// A process that computes and moves memory until this one ends.
class BusyNeighbour final {
  public:
    BusyNeighbour() : process(::fork()) {
        if (process == 0) work();
    }
    ~BusyNeighbour() {
        if (process <= 0) return;
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    }
    BusyNeighbour(const BusyNeighbour&) = delete;
    BusyNeighbour& operator=(const BusyNeighbour&) = delete;

  private:
    [[noreturn]] static void work() {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        constexpr std::size_t beyondTheCaches = 16'000'000;
        std::vector<char> memory(beyondTheCaches);
        std::atomic<char> round = 0;
        while (true)
            std::ranges::fill(memory, ++round);
    }

    pid_t process;
};

void printRow(const char* what, const Histogram& times, double period) {
    fmt::print(
        "{:<34}{:>9.1f}{:>9.1f}{:>9.1f}{:>9.1f}{:>9.1f}{:>8.1f} %\n", what, times.within(0.5),
        times.within(0.99), times.within(0.999), times.within(0.9999), times.worst(),
        times.within(0.9999) / period * 100.0
    );
}

void printReport(const CycleTimes& times, double period, std::uint32_t xruns, int priority) {
    fmt::print(
        "\n{} blocks of {:.0f} microseconds, {}, {} xruns of the device. In microseconds:\n",
        times.inside.total(), period,
        priority > 0 ? fmt::format("real-time priority {}", priority) : "no real-time priority", xruns
    );
    fmt::print(
        "{:<34}{:>9}{:>9}{:>9}{:>9}{:>9}{:>10}\n", "", "median", "99 %", "99.9 %", "99.99 %", "worst",
        "of period"
    );
    printRow("inside our callback, by the clock", times.inside, period);
    printRow("processor time inside it", times.worked, period);
    printRow("woken late", times.late, period);
    const CycleTimes::Misses& misses = times.misses;
    fmt::print(
        "Blocks that ended after the next was due. Ours: {} computed too long, {} waited. The machine's: {} "
        "preempted, {} woken late.\n",
        misses.computed, misses.waited, misses.preempted, misses.wokenLate
    );
}

double periodOf(const Options& options) {
    return static_cast<double>(options.frames) / sampleRate * 1e6;
}

/// Runs the loop for so many seconds, or while `goesOn`.
template <class GoesOn>
void showProgress(platform::RunLoop& loop, double seconds, GoesOn goesOn) {
    orvane::cli::ProgressBar bar;
    const auto start = std::chrono::steady_clock::now();
    const auto timer = loop.repeat(100ms, [&] {
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        bar.update(elapsed.count() / seconds);
        if (!goesOn() || elapsed.count() >= seconds) loop.quit();
    });
    loop.run();
}

/// Computes for as long as the mixer does, but touches no memory and takes no lock: any delay is the
/// system's.
struct Probe final : platform::AudioStreamClient {
    void cycle(
        std::span<const std::span<const float>>, std::span<const std::span<float>> outputs, std::size_t
    ) noexcept override {
        for (const std::span<float>& block : outputs)
            std::ranges::fill(block, 0.0F);
        constexpr int additions = 100'000;
        double sum = 0.0;
        for (int i = 0; i < additions; ++i)
            sum += static_cast<double>(i);
        result = sum;
    }

    std::atomic<double> result = 0.0;
};

void probe(const Options& options) {
    CycleTimes times(sampleRate);
    platform::SystemLog log([](const platform::LogLine&) {});
    const auto driver = timed(noisyDevice(log), times);
    const std::string uid = driver->devices().front().uid;
    driver->requestBufferSize(uid, static_cast<std::uint32_t>(options.frames));
    Probe client;
    auto opened = driver->open(uid, true, client);
    if (!opened) throw std::runtime_error("The device could not be opened.");
    platform::AudioStream& stream = *opened.value();
    if (stream.start() != platform::noErr) throw std::runtime_error("The device did not start.");
    platform::RunLoop loop;
    int priority = 0;
    showProgress(loop, options.seconds, [&] {
        priority = std::max(priority, stream.realtimePriority());
        return true;
    });
    const std::uint32_t xruns = stream.xrunCount();
    stream.stop();
    fmt::print(
        "The machine alone: blocks that only count{}.\n", options.isAlone ? "" : "; another process at work"
    );
    printReport(times, periodOf(options), xruns, priority);
}

void run(const Options& options) {
    CycleTimes times(sampleRate);
    platform::jack::JackClients clients("orvane_steadiness");
    platform::pipewire::PipeWireGraph graph("orvane_steadiness");
    const auto makeDriver = [&](platform::SystemLog& log) {
        if (options.driver == "virtual") return timed(noisyDevice(log), times);
        if (options.driver == "pipewire")
            return timed(std::make_unique<platform::pipewire::PipeWireAudioDriver>(graph), times);
        return timed(std::make_unique<platform::jack::JackAudioDriver>(clients), times);
    };
    BenchMixer mixer(stripCount, makeDriver, options.insertWorkers);
    mixer.engine.setBufferSize(options.frames);
    mixer.loadOnEveryStrip(options.plugin);
    // NOLINTNEXTLINE(misc-const-correctness): its timers change it.
    RestlessOperator restless(mixer, options.plugin);
    mixer.start();
    int priority = 0;
    showProgress(mixer.loop, options.seconds, [&] {
        priority = std::max(priority, mixer.engine.realtimePriority());
        return mixer.engine.state().isRunning.get();
    });
    const std::uint32_t xruns = mixer.engine.xrunCount();
    if (!mixer.engine.state().isRunning.get()) throw std::runtime_error("The device died.");
    mixer.engine.stop();

    fmt::print(
        "{} device, {} strips, {} on each; {} edits, {} recalls, {} plugins exchanged meanwhile{}.\n",
        options.driver, stripCount, options.plugin, restless.edits(), restless.recalls(),
        restless.pluginLoads(), options.isAlone ? "" : "; another process at work"
    );
    printReport(times, periodOf(options), xruns, priority);
    if (options.plot.empty()) return;
    const std::array<PlottedHistogram, 3> curves = {
        {{"inside our callback", "#1b7f5c", times.inside},
         {"processor time inside it", "#3b5bdb", times.worked},
         {"woken late", "#e8890c", times.late}}};
    plot(
        options.plot,
        fmt::format(
            "{} device, {} frames, {} strips with a plugin each", options.driver, options.frames, stripCount
        ),
        curves, periodOf(options)
    );
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App program(
        "Measures every block of a live run under load; docs/performance.md explains the figures.",
        "orvane_steadiness"
    );
    program
        .add_option(
            "--driver", options.driver,
            "virtual; jack, pipewire: the running server; probe: the virtual one with only a loop that counts"
        )
        ->check(CLI::IsMember({"virtual", "jack", "pipewire", "probe"}))
        ->capture_default_str();
    program.add_option("--seconds", options.seconds, "How long to run")->capture_default_str();
    program.add_option("--frames", options.frames, "Frames per block")->capture_default_str();
    program.add_option("--plugin", options.plugin, "The LV2 plugin on every strip")->capture_default_str();
    program.add_option("--insert-workers", options.insertWorkers, "Threads that help with the plugins")
        ->capture_default_str();
    program.add_option("--plot", options.plot, "File for a picture of the histograms (SVG)");
    program.add_flag("--alone", options.isAlone, "Without the process that keeps a processor busy");
    CLI11_PARSE(program, argc, argv);
    try {
        // Forks before any thread is started: a child has only one.
        std::optional<BusyNeighbour> neighbour;
        if (!options.isAlone) neighbour.emplace();
        options.driver == "probe" ? probe(options) : run(options);
    } catch (const std::exception& problem) {
        fmt::print(stderr, "orvane_steadiness: {}\n", problem.what());
        return 1;
    }
}
