#include "support/hosted_unit.h"
#include "support/lv2_bundles.h"

#include "scripted_host_test.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::platform::lv2 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Dictionary = PropertyList::Dictionary;

AudioComponentDescription describedAs(AudioUnitHost& host, std::string_view name) {
    for (const auto& component : host.componentsMatchingDescription({}))
        if (component.name == name) return component.audioComponentDescription;
    throw std::runtime_error(std::string(name));
}

std::vector<std::string> names(const std::vector<AUAudioUnitPreset>& presets) {
    std::vector<std::string> all;
    all.reserve(presets.size());
    for (const AUAudioUnitPreset& preset : presets)
        all.push_back(fmt::format("{}/{}", preset.bank, preset.name));
    return all;
}

Result<Dictionary> read(AudioUnitHost& host, const AUAudioUnitPreset& preset) {
    std::promise<Result<Dictionary>> answer;
    host.readFactoryPreset(preset, [&](Result<Dictionary> state) { answer.set_value(std::move(state)); });
    return answer.get_future().get();
}

std::string preset(std::string_view uri, std::string_view name, std::string_view more) {
    return fmt::format(
        "<{}> a pset:Preset ; rdfs:label \"{}\" ; {} lv2:appliesTo <urn:orvane:test:plain> .\n", uri, name,
        more
    );
}

class FactoryPresets : public test::ScriptedHostTest {};

TEST_F(FactoryPresets, AreListedByBankAndNameForEachOfTheirPlugins) {
    bundles.add(
        "a.lv2", preset("urn:1", "Soft", "lv2:appliesTo <urn:orvane:test:safe> ;")
                     + preset("urn:2", "Hall", "pset:bank <urn:rooms> ;") + preset("urn:3", "Loud", "")
                     + preset("urn:4", "", "")
                     + "<urn:rooms> a pset:Bank ; rdfs:label \"Rooms\" . <urn:5> a pset:Preset ; "
                       "lv2:appliesTo <urn:orvane:test:plain> ."
    );
    bundles.add("b.lv2", preset("urn:3", "Loud as well", ""));
    const auto plain = host->factoryPresets(describedAs(*host, "plain"));
    EXPECT_THAT(names(plain), ElementsAre("/Loud", "/Soft", "Rooms/Hall"));
    EXPECT_THAT(names(host->factoryPresets(describedAs(*host, "safe"))), ElementsAre("/Soft"));
    EXPECT_EQ(std::get<std::string>(read(*host, plain[1]).value().at("uri").value), "urn:orvane:test:plain");
}

TEST_F(FactoryPresets, SetOnlyTheControlsAndStateThatTheyContain) {
    bundles.add(
        "a.lv2", preset(
                     "urn:1", "Warm",
                     "lv2:port [ lv2:symbol \"gain\" ; pset:value 1.25 ] , [ lv2:symbol \"answer\" ; "
                     "pset:value 3 ] , [ lv2:symbol \"none\" ; pset:value 1 ] ; state:state [ "
                     "<urn:orvane:test:number> 42 ; <urn:orvane:test:text> \"warm\" ; "
                     "<urn:orvane:test:path> \"manifest.ttl\"^^atom:Path ; <urn:orvane:test:other> 1 ] ;"
                 )
    );
    const auto unit = make("plain");
    PropertyList expected{*unit->fullState()};
    const auto inside = [&](const char* key) -> Dictionary& {
        return std::get<Dictionary>(std::get<Dictionary>(expected.value)[key].value);
    };
    const auto set = [&](const char* key, PropertyList::Data data) {
        auto& encoded = std::get<Dictionary>(inside("state")[key].value);
        encoded["value"].value = std::move(data);
    };
    inside("controls")["gain"].value = 1.25;
    set("urn:orvane:test:number", {42, 0, 0, 0});
    set("urn:orvane:test:text", {'w', 'a', 'r', 'm', 0});
    const std::string path = bundles.searchPath() + "a.lv2/manifest.ttl";
    set("urn:orvane:test:path", {path.c_str(), path.c_str() + path.size() + 1});

    const auto state = read(*host, host->factoryPresets(describedAs(*host, "plain")).at(0));
    ASSERT_TRUE(state) << state.error().description;
    EXPECT_TRUE(unit->setFullState(state.value()));
    EXPECT_EQ(PropertyList{*unit->fullState()}, expected);
}

TEST_F(FactoryPresets, OfAnInstalledPluginMatchItsFiles) {
    Lv2UnitHost installed(log);
    const auto unit = test::instantiate(installed, "MDA Leslie").unit;
    const auto presets = installed.factoryPresets(describedAs(installed, "MDA Leslie"));
    const auto slow = std::ranges::find(presets, "Slow", &AUAudioUnitPreset::name);
    ASSERT_NE(slow, presets.end());
    EXPECT_TRUE(unit->setFullState(read(installed, *slow).value()));
    EXPECT_EQ(test::parameter(*unit, "hi_depth").value(), 0.75F);
    EXPECT_EQ(test::parameter(*unit, "hi_throb").value(), 0.57F);
}

TEST_F(FactoryPresets, ThatCannotBeReadReportWhy) {
    const std::string warm = preset("urn:1", "Warm", "");
    bundles.add("a.lv2", warm);
    const auto presets = host->factoryPresets(describedAs(*host, "plain"));
    ASSERT_EQ(presets.size(), 1U);
    const auto reason = [&] {
        const auto state = read(*host, presets[0]);
        return state ? std::string() : state.error().description;
    };
    EXPECT_EQ(reason(), "");
    bundles.add("a.lv2", "");
    EXPECT_EQ(reason(), "The preset \"Warm\" cannot be loaded: it is no longer installed.");
    std::string nested = warm + "<urn:nested> ";
    for (int i = 0; i < 300'000; ++i)
        nested += "<urn:b> [ ";
    bundles.add("a.lv2", nested);
    EXPECT_THAT(reason(), HasSubstr("The preset \"Warm\" cannot be loaded: reading it "));
    const std::string manifest = bundles.searchPath() + "a.lv2/manifest.ttl";
    std::filesystem::remove(manifest);
    ASSERT_EQ(::mkfifo(manifest.c_str(), 0600), 0);
    EXPECT_EQ(reason(), "The preset \"Warm\" cannot be loaded: reading it fails (exit code 1).");
    EXPECT_FALSE(read(*host, {.number = 1, .name = "Other"}));

    std::vector<bool> answers;
    for (int i = 0; i < 20; ++i)
        host->readFactoryPreset(presets[0], [&](const auto& state) { answers.push_back(state.hasValue()); });
    host.reset();
    EXPECT_EQ(answers.size(), 20U);
}

} // namespace
} // namespace orvane::platform::lv2
