#include "platform/lv2/effect_scan.h"

#include "platform/lv2/lv2_unit_host.h"
#include "support/lv2_bundles.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <stop_token>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace orvane::platform::lv2 {
namespace {

using test::Lv2Bundles;
using namespace testing;

struct Scan {
    std::vector<InstalledPlugin> effects;
    std::vector<InstalledPreset> presets;
    std::vector<std::string> lines;
};

Scan scan(const std::string& searchPath, const ScanOptions& options = {}) {
    Scan result;
    SystemLog log([&](const LogLine& line) { result.lines.emplace_back(line.text); });
    InstalledEffects found = scanForEffects(searchPath, log, options);
    result.effects = std::move(found.plugins);
    result.presets = std::move(found.presets);
    log.flush();
    return result;
}

std::vector<std::string> names(const std::vector<AVAudioUnitComponent>& components) {
    std::vector<std::string> all;
    for (const auto& component : components)
        all.push_back(component.name);
    return all;
}

TEST(ComponentScan, CodesArePublishedHashesOfTheText) {
    EXPECT_EQ(stableCode(""), 0x811c9dc5U);
    EXPECT_EQ(stableCode("a"), 0xe40c292cU);
    EXPECT_EQ(stableCode("foobar"), 0xbf9cf968U);
}

TEST(ComponentScan, ListsTheInstalledEffectsInOrderWithoutLoadingAny) {
    SystemLog log([](const LogLine&) {});
    Lv2UnitHost host(log);
    const auto all = host.componentsMatchingDescription({});

    EXPECT_THAT(
        names(all), AllOf(
                        Contains("MDA Limiter"), Contains("MDA Stereo"), Contains("Stereo Balance Control"),
                        Contains("x42-eq - Parametric Equalizer Mono"),
                        // An instrument, a generator, a MIDI filter and a matrix of eight inputs and outputs.
                        Not(Contains("MDA ePiano")), Not(Contains("Test Signal")),
                        Not(Contains("MIDI Channel Filter")), Not(Contains("Matrix Mixer 8x8"))
                    )
    );
    EXPECT_TRUE(std::ranges::is_sorted(all, {}, [](const AVAudioUnitComponent& component) {
        return std::tie(component.manufacturerName, component.name);
    }));
    EXPECT_THAT(test::contentOf("/proc/self/maps"), Not(HasSubstr("/lv2/")));

    const auto equalizer =
        std::ranges::find(all, "x42-eq - Parametric Equalizer Mono", &AVAudioUnitComponent::name);
    const AudioComponentDescription expected{
        .componentType = kAudioUnitType_Effect,
        .componentSubType = stableCode("http://gareus.org/oss/lv2/fil4#mono"),
        .componentManufacturer = stableCode("Robin Gareus")};
    EXPECT_EQ(equalizer->audioComponentDescription, expected);
    EXPECT_THAT(host.componentsMatchingDescription(expected), ElementsAre(*equalizer));
    EXPECT_EQ(host.componentsMatchingDescription({.componentType = kAudioUnitType_Effect}), all);
    EXPECT_THAT(host.componentsMatchingDescription({.componentType = kAudioUnitType_MusicEffect}), IsEmpty());
}

TEST(ComponentScan, LeavesOutUnusablePluginsAndLogsWhy) {
    const Lv2Bundles bundles;
    bundles.add("good.lv2", Lv2Bundles::plugin("urn:good", "Good", ""));
    bundles.add("broken.lv2", "<urn:broken> a lv2:Plugin ; doap:name \"unfinished");
    bundles.add(
        "nameless.lv2", "<urn:nameless> a lv2:Plugin ; lv2:port [" + Lv2Bundles::audioPort(0, "Input") + "] ."
    );
    bundles.add(
        "ports.lv2", "<urn:ports> a lv2:Plugin ; doap:name \"Ports\" ; lv2:port [ a lv2:AudioPort ; "
                     "lv2:index 0 ; lv2:symbol \"p\" ; lv2:name \"P\" ] ."
    );
    bundles.add("gone.lv2", Lv2Bundles::plugin("urn:gone", "Gone", ""));
    std::filesystem::remove(bundles.searchPath() + "gone.lv2/plugin.so");
    bundles.add("empty.lv2", "");
    std::filesystem::create_directory(bundles.searchPath() + "none.lv2");

    const Scan result = scan("/nonexistent:" + bundles.searchPath());
    ASSERT_EQ(result.effects.size(), 1U);
    EXPECT_EQ(result.effects[0].component.name, "Good");
    EXPECT_THAT(
        result.lines,
        testing::UnorderedElementsAre(
            AllOf(HasSubstr("broken.lv2: its manifest.ttl cannot be read (line ")),
            AllOf(HasSubstr("Left out urn:gone: its library /"), HasSubstr("plugin.so is missing")),
            "Left out urn:nameless: it has no name.",
            AllOf(HasSubstr("Left out urn:ports: "), HasSubstr("port")),
            AllOf(HasSubstr("none.lv2: its manifest.ttl cannot be opened"))
        )
    );
}

TEST(ComponentScan, OfAPluginInstalledTwiceTheNewerWinsThenTheFirstOnThePath) {
    const Lv2Bundles mine;
    const Lv2Bundles systems;
    const auto version = [](int minor) { return "lv2:minorVersion " + std::to_string(minor) + " ;"; };
    mine.add("a.lv2", Lv2Bundles::plugin("urn:a", "Mine", version(2)));
    systems.add("a.lv2", Lv2Bundles::plugin("urn:a", "System's", version(2)));
    mine.add("b.lv2", Lv2Bundles::plugin("urn:b", "Old", version(2)));
    systems.add("b.lv2", Lv2Bundles::plugin("urn:b", "New", version(4)));

    const Scan result = scan(mine.searchPath() + ":" + systems.searchPath());
    ASSERT_EQ(result.effects.size(), 2U);
    EXPECT_EQ(result.effects[0].component.name, "Mine");
    EXPECT_EQ(result.effects[1].component.name, "New");
}

TEST(ComponentScan, AHostileBundleIsLeftOutWithOneLogLine) {
    const Lv2Bundles bundles;
    bundles.add("a-good.lv2", Lv2Bundles::plugin("urn:a", "A", ""));
    bundles.add(
        "index.lv2", "<urn:index> a lv2:Plugin ; doap:name \"Index\" ; lv2:port [ a lv2:AudioPort, "
                     "lv2:InputPort ; lv2:index 4294967295 ; lv2:symbol \"p\" ; lv2:name \"P\" ] ."
    );
    std::string nested;
    for (int i = 0; i < 300'000; ++i)
        nested += "<urn:b> [ ";
    bundles.add("nested.lv2", "<urn:nested> " + nested);
    bundles.add("many.lv2", Lv2Bundles::plugin("urn:many", std::string(1U << 20U, 'x'), ""));
    std::filesystem::create_directory(bundles.searchPath() + "pipe.lv2");
    ASSERT_EQ(::mkfifo((bundles.searchPath() + "pipe.lv2/manifest.ttl").c_str(), 0600), 0);
    bundles.add("z-good.lv2", Lv2Bundles::plugin("urn:z", "Z", ""));

    const Scan result = scan(bundles.searchPath());
    ASSERT_EQ(result.effects.size(), 2U);
    EXPECT_EQ(result.effects[0].component.name, "A");
    EXPECT_EQ(result.effects[1].component.name, "Z");
    EXPECT_THAT(
        result.lines,
        testing::UnorderedElementsAre(
            HasSubstr("index"), HasSubstr("nested.lv2: "), HasSubstr("many.lv2: it describes more"),
            HasSubstr("pipe.lv2: its manifest.ttl is not a file.")
        )
    );
}

TEST(ComponentScan, AChildBeyondALimitOrAfterAStopRequestIsGivenUp) {
    const std::string forever = "while :; do :; done";
    const std::string endless = "while :; do echo aaaaaaaaaaaaaaaa; done";
    const auto outcome = [](const std::string& script, const ChildLimits& limits, bool stops = false) {
        std::stop_source stop;
        if (stops) stop.request_stop();
        const auto output = outputOfChild("/bin/sh", {"-c", script}, limits, stop.get_token());
        return output ? std::string(output.value().begin(), output.value().end()) : output.error().why;
    };
    const ChildLimits brief{.time = std::chrono::milliseconds(100)};
    EXPECT_EQ(outcome("printf out; printf err >&2", {}), "out");
    EXPECT_EQ(outcome("exit 3", {}), "reading it fails (exit code 3)");
    EXPECT_EQ(outcome("kill -SEGV $$", {}), "reading it crashes (signal 11)");
    EXPECT_EQ(outcome(forever, brief), "reading it takes longer than 0.1 s");
    EXPECT_EQ(outcome("exec >&-; " + forever, brief), "reading it takes longer than 0.1 s");
    EXPECT_EQ(outcome(endless, {}), "it describes too much");
    EXPECT_EQ(outcome(forever, {}, true), "the program is closing");
}

TEST(ComponentScan, ResultsAreCachedUntilABundleChangesOrTheCacheIsDamaged) {
    const Lv2Bundles bundles;
    const test::TemporaryFolder folder;
    const ScanOptions options{.cacheFile = folder / "cache/effects"};
    bundles.add(
        "a.lv2", Lv2Bundles::plugin("urn:a", "A", "lv2:minorVersion 2 ;")
                     + "<urn:p> a pset:Preset ; lv2:appliesTo <urn:a> ; rdfs:label \"P\" ."
    );
    bundles.add("none.lv2", "");
    std::filesystem::remove(bundles.searchPath() + "none.lv2/manifest.ttl");

    const Scan first = scan(bundles.searchPath(), options);
    ASSERT_EQ(first.effects.size(), 1U);
    ASSERT_EQ(first.presets.size(), 1U);
    ASSERT_EQ(first.lines.size(), 1U);
    const std::string kept = test::contentOf(folder / "cache/effects");

    // The description is unchanged, but its stamp says that it was written.
    const std::string description = bundles.searchPath() + "a.lv2/manifest.ttl";
    const auto written = std::filesystem::last_write_time(description);
    bundles.add("a.lv2", Lv2Bundles::plugin("urn:a", "Changed", ""));
    std::filesystem::last_write_time(description, written);
    std::filesystem::last_write_time(bundles.searchPath() + "a.lv2", written);
    EXPECT_EQ(scan(bundles.searchPath(), options).effects, first.effects);
    EXPECT_EQ(scan(bundles.searchPath(), options).presets, first.presets);
    EXPECT_EQ(scan(bundles.searchPath(), options).lines, first.lines);
    std::filesystem::last_write_time(description, written + std::chrono::seconds(1));
    EXPECT_EQ(scan(bundles.searchPath(), options).effects.at(0).component.name, "Changed");

    for (const std::size_t length : {std::size_t{0}, kept.size() / 2, kept.size() - 1}) {
        std::ofstream(folder / "cache/effects", std::ios::binary) << kept.substr(0, length);
        EXPECT_EQ(scan(bundles.searchPath(), options).effects.at(0).component.name, "Changed") << length;
        EXPECT_NE(test::contentOf(folder / "cache/effects"), kept.substr(0, length));
    }
}

} // namespace
} // namespace orvane::platform::lv2
