#include "bench_mixer.h"
#include "block_times.h"
#include "line_fit.h"
#include "parts.h"

#include "engine/session_files.h"

#include <fmt/format.h>

#include <malloc.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orvane::bench {

namespace {

constexpr std::size_t mostStrips = 48;
/// A plugin that computes little, and another to exchange it with.
constexpr const char* plugin = "MDA Limiter";
constexpr const char* otherPlugin = "MDA Dynamics";
constexpr std::size_t installedPlugins = 500;

/// A folder that the destructor removes.
class Folder final {
  public:
    Folder() : path(std::filesystem::temp_directory_path() / fmt::format("orvane_bench_{}", ::getpid())) {
        std::filesystem::create_directory(path);
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::filesystem::path path;
};

void row(const char* what, BlockTimes& times) {
    constexpr double milli = 1e3;
    fmt::print("  {:<62}{:>10.2f}{:>10.2f}\n", what, times.within(0.5) * milli, times.within(1.0) * milli);
    std::fflush(stdout);
}

void measureStartAndStop(BenchMixer& mixer, const char* starting, const char* stopping) {
    BlockTimes starts;
    BlockTimes stops;
    for (int i = 0; i < 30; ++i) {
        starts.measure([&mixer] { mixer.start(); });
        stops.measure([&mixer] { mixer.engine.stop(); });
    }
    row(starting, starts);
    row(stopping, stops);
}

/// Alternates between two scenes that differ in every strip while the mixer runs.
BlockTimes recalls(BenchMixer& mixer, int count) {
    BlockTimes times;
    mixer.start();
    for (int i = 0; i < count; ++i)
        times.measure([&mixer, i] {
            mixer.engine.recallSnapshot(i % 2);
            mixer.awaitPlugins();
        });
    mixer.engine.stop();
    return times;
}

void captureScene(BenchMixer& mixer, double trim) {
    for (const session::ChannelStrip& strip : std::vector(mixer.engine.state().channelStrips.get()))
        mixer.engine.setTrim(strip.id, trim);
    mixer.engine.newSnapshot();
}

void measureLifecycle() {
    BenchMixer plain(mostStrips, noisyDevice);
    plain.engine.setBufferSize(64);
    // The first request scans for plugins, which is measured separately.
    (void)plain.engine.availableInsertComponents();
    measureStartAndStop(plain, "start, 48 strips", "stop");
    captureScene(plain, 0.5);
    captureScene(plain, 1.0);
    BlockTimes withoutPlugins = recalls(plain, 100);

    BenchMixer same(mostStrips, noisyDevice);
    same.engine.setBufferSize(64);
    same.loadOnEveryStrip(plugin);
    measureStartAndStop(same, "start, 48 strips with a plugin each", "stop");
    captureScene(same, 0.5);
    captureScene(same, 1.0);
    BlockTimes withPlugins = recalls(same, 100);
    same.loadOnEveryStrip(otherPlugin);
    same.engine.selectSnapshot(1);
    same.engine.storeSnapshot();
    BlockTimes withOthers = recalls(same, 20);

    row("recall, 48 strips", withoutPlugins);
    row("recall, 48 strips, the same 48 plugins", withPlugins);
    row("recall, 48 strips, 48 other plugins, until all are live", withOthers);
}

/// A large session: scenes with large plugin states.
void measureSession(const Folder& folder) {
    BenchMixer mixer(mostStrips, noisyDevice);
    session::MixerDocumentData document = mixer.engine.makeDocumentData();
    std::mt19937 random(1);
    constexpr std::size_t scenes = 100;
    constexpr std::size_t stateBytes = 9000;
    for (session::ChannelSettingsData& channel : document.channels) {
        channel.pluginSlots[0].pluginName = plugin;
        channel.pluginSlots[0].component = session::AUComponentIdentity{};
        std::vector<std::uint8_t> state(stateBytes);
        for (std::uint8_t& byte : state)
            byte = static_cast<std::uint8_t>(random());
        channel.pluginSlots[0].presetData = std::move(state);
    }
    for (std::size_t i = 0; i < scenes; ++i) {
        session::Snapshot& scene = document.snapshots.emplace_back();
        scene.id = platform::Uuid::random();
        scene.name = fmt::format("Scene {}", i);
        scene.channels = document.channels;
    }
    const std::filesystem::path file = folder.path / "large.orvane";
    BlockTimes writes;
    BlockTimes reads;
    BlockTimes applications;
    for (int i = 0; i < 3; ++i) {
        writes.measure([&] {
            if (const auto written = engine::exportSession(document, file); !written)
                throw std::runtime_error(written.error().description);
        });
        auto read = engine::readSession(file);
        reads.measure([&] { read = engine::readSession(file); });
        if (!read) throw std::runtime_error(read.error().description);
        applications.measure([&] { mixer.engine.applyDocument(read.value()); });
    }
    const double mebibytes = static_cast<double>(std::filesystem::file_size(file)) / 1024.0 / 1024.0;
    fmt::print("  A session of {:.1f} MiB, {} scenes of 48 strips:\n", mebibytes, scenes);
    row("write it", writes);
    row("read it", reads);
    row("make it the mix", applications);
}

void writeBundle(const std::filesystem::path& bundle, std::size_t number) {
    std::filesystem::create_directory(bundle);
    std::ofstream(bundle / "manifest.ttl") << fmt::format(
        "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
        "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
        "<urn:bench:{}> a lv2:Plugin ; lv2:binary <p.so> ; rdfs:seeAlso <plugin.ttl> .\n",
        number
    );
    std::ofstream(bundle / "plugin.ttl") << fmt::format(
        R"(@prefix lv2: <http://lv2plug.in/ns/lv2core#> .
@prefix doap: <http://usefulinc.com/ns/doap#> .
<urn:bench:{0}> a lv2:Plugin, lv2:CompressorPlugin ; doap:name "Bench {0}" ; lv2:port
  [ a lv2:AudioPort, lv2:InputPort ; lv2:index 0 ; lv2:symbol "in" ; lv2:name "In" ] ,
  [ a lv2:AudioPort, lv2:OutputPort ; lv2:index 1 ; lv2:symbol "out" ; lv2:name "Out" ] ,
  [ a lv2:ControlPort, lv2:InputPort ; lv2:index 2 ; lv2:symbol "gain" ; lv2:name "Gain" ;
    lv2:default 0.0 ; lv2:minimum -60.0 ; lv2:maximum 12.0 ] .
)",
        number
    );
}

void measureScan(const Folder& folder) {
    for (std::size_t i = 0; i < installedPlugins; ++i)
        writeBundle(folder.path / fmt::format("p{}.lv2", i), i);
    platform::SystemLog log([](const platform::LogLine&) {});
    BlockTimes scans;
    for (int i = 0; i < 5; ++i)
        scans.measure([&] {
            platform::lv2::Lv2UnitHost host(log, folder.path.string());
            const auto found = host.componentsMatchingDescription({platform::kAudioUnitType_Effect});
            if (found.size() != installedPlugins)
                throw std::runtime_error(fmt::format("The scan found {} plugins.", found.size()));
        });
    row("scan of 500 plugins", scans);
}

double allocatedKiB() {
    const struct mallinfo2 heap = ::mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd) / 1024.0;
}

void measureMemory() {
    fmt::print("\nMemory of a started engine on 48 inputs and outputs, in KiB.\n");
    fmt::print("{:>8}{:>8}{:>12}\n", "frames", "strips", "KiB");
    for (const std::int64_t frames : {64, 1024}) {
        std::vector<Point> points;
        for (const std::size_t strips : {2, 8, 16, 32, 48}) {
            const double before = allocatedKiB();
            BenchMixer mixer(strips, noisyDevice);
            mixer.engine.setBufferSize(frames);
            mixer.start();
            points.push_back({static_cast<double>(strips), allocatedKiB() - before});
            mixer.engine.stop();
            fmt::print("{:>8}{:>8}{:>12.1f}\n", frames, strips, points.back().y);
        }
        const Line line = Line::through(points);
        fmt::print(
            "  line: {:.1f} KiB + {:.2f} KiB per strip, R2 = {:.5f}\n", line.intercept, line.slope,
            line.rSquared
        );
    }
}

} // namespace

void printEngine() {
    const Folder folder;
    fmt::print("\nThe whole engine, in milliseconds.\n  {:<62}{:>10}{:>10}\n", "", "median", "worst");
    measureLifecycle();
    measureSession(folder);
    measureScan(folder);
    measureMemory();
}

} // namespace orvane::bench
