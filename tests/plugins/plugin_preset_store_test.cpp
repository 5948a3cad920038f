#include "plugins/plugin_preset_store.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace testing;
using plugins::PluginPresetStore;
using session::AUComponentIdentity;
namespace fs = std::filesystem;

constexpr AUComponentIdentity delay{0x61756678, 4294967295, 1};
constexpr AUComponentIdentity gate{0x61756678, 2, 1};
constexpr const char* file = "ORVANE/PluginPresets.json";

std::vector<std::string> names(const PluginPresetStore& store, const AUComponentIdentity& identity) {
    std::vector<std::string> found;
    for (const plugins::NamedPreset& preset : store.presets(identity))
        found.push_back(preset.name);
    return found;
}

class PluginPresets : public testing::Test {
  protected:
    std::vector<std::string> namesStored(const fs::path& folder) {
        return names(PluginPresetStore(folder, log), delay);
    }

    /// Returns the lines logged since the last call.
    std::vector<std::string> logged() {
        log.flush();
        return std::exchange(lines, {});
    }

    std::vector<std::string> lines;
    platform::SystemLog log{[this](const platform::LogLine& line) { lines.emplace_back(line.text); }};
};

TEST_F(PluginPresets, KeepsWhatIsAddedInOrderAcrossEngines) {
    const TemporaryFolder folder;
    const fs::path support = folder / "share";
    PluginPresetStore store(support, log);
    EXPECT_FALSE(fs::exists(support / file));
    store.add({{"Hall", {0, 255, 7}, delay}});
    store.add({{"Hall", {}, delay}});
    store.add({{"Größe \xFF \"", {1}, gate}});
    const PluginPresetStore second(support, log);
    EXPECT_EQ(second.presets(delay), store.presets(delay));
    EXPECT_THAT(names(second, gate), ElementsAre("Größe \xEF\xBF\xBD \""));
    store.remove(store.presets(delay)[0].id, delay);
    EXPECT_EQ(PluginPresetStore(support, log).presets(delay), store.presets(delay));
    store.remove(store.presets(delay)[0].id, delay);
    store.remove(store.presets(gate)[0].id, gate);
    store.remove(platform::Uuid::random(), {1, 2, 3});
    EXPECT_THAT(contentOf(support / file), HasSubstr(R"("componentSubType":4294967295)"));
    EXPECT_THAT(contentOf(support / file), HasSubstr(R"("presets":[])"));
    EXPECT_TRUE(namesStored(support).empty());

    PluginPresetStore inMemory(std::nullopt, log);
    inMemory.add({{"Hall", {1}, delay}});
    EXPECT_THAT(names(inMemory, delay), ElementsAre("Hall"));
}

TEST_F(PluginPresets, ImportsAnEarlierFileOnce) {
    const TemporaryFolder folder;
    const TemporaryFolder other;
    PluginPresetStore(other / "", log).add({{"Earlier", {1}, delay}});
    const std::string earlier = contentOf(other / file);
    fs::create_directory(folder / "Dravonel");
    folder.add("Dravonel/PluginPresets.json", earlier);
    PluginPresetStore store(folder / "", log);
    store.add({{"Later", {1}, delay}});
    EXPECT_THAT(namesStored(folder / ""), ElementsAre("Earlier", "Later"));
    EXPECT_EQ(contentOf(folder / "Dravonel/PluginPresets.json"), earlier);
}

TEST_F(PluginPresets, StartsEmptyWithADamagedFileAndOverwritesIt) {
    const TemporaryFolder folder;
    PluginPresetStore(folder / "", log).add({{"Hall", {1}, delay}});
    const std::string whole = contentOf(folder / file);
    const auto with = [&whole](const std::string& part, const std::string& other) {
        std::string changed = whole;
        return changed.replace(changed.find(part), part.size(), other);
    };
    for (const std::string& damaged : std::vector<std::string>{
             "", "null", "[]", "{}", R"({"entries":null})", R"({"entries":{}})", whole + "x",
             whole.substr(0, whole.size() - 1), whole + std::string(1, '\0'), with("\"Hall\"", "7"),
             with("\"Hall\"", "\"\xFF\""), with("4294967295", "4294967296"), with("4294967295", "-1"),
             with("4294967295", "1.0"), with("AQ==", "AQ="), with("\"name\"", "\"title\""),
             with("\"id\":\"", "\"id\":\"x"), std::string(1'000'000, '[')}) {
        folder.add(file, damaged);
        PluginPresetStore store(folder / "", log);
        EXPECT_TRUE(names(store, delay).empty()) << damaged.substr(0, 200);
        EXPECT_THAT(logged(), ElementsAre(HasSubstr("could not be read"))) << damaged.substr(0, 200);
        store.add({{"New", {2}, delay}});
        EXPECT_THAT(namesStored(folder / ""), ElementsAre("New"));
    }
    // Of two entries for one component the later wins; unknown keys are ignored.
    const std::string entry = whole.substr(12, whole.size() - 14);
    std::string second = entry;
    second.replace(second.find("Hall"), 4, "Room");
    folder.add(file, R"({"version":[{}],"entries":[)" + entry + "," + second + "]}");
    EXPECT_THAT(namesStored(folder / ""), ElementsAre("Room"));
}

TEST_F(PluginPresets, KeepsAndLogsPresetsThatCannotBeWritten) {
    const TemporaryFolder folder;
    // A folder cannot be created if a file has its name.
    folder.add("blocked", "");
    PluginPresetStore store(folder / "blocked", log);
    store.add({{"Hall", {1}, delay}});
    EXPECT_THAT(logged(), ElementsAre(AllOf(HasSubstr("could not be saved"), HasSubstr("Not a directory"))));
    EXPECT_THAT(names(store, delay), ElementsAre("Hall"));
}

} // namespace
