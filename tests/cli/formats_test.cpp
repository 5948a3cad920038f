#include "engine/session/mixer_document_codec.h"
#include "support/build_files.h"
#include "support/program.h"
#include "support/random_document.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

using namespace orvane;
using namespace test;
using Keys = std::set<std::string>;

/// The keys in the first table column of the page's section with this title.
Keys documentedKeys(const std::string& title) {
    std::ifstream page(ORVANE_FORMATS);
    const std::regex word("`([^`]+)`");
    Keys keys;
    bool isInSection = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("## ")) isInSection = line == "## " + title;
        if (!isInSection || !line.starts_with("| `")) continue;
        const std::string cell = line.substr(0, line.find('|', 1));
        for (auto at = std::sregex_iterator(cell.begin(), cell.end(), word); at != std::sregex_iterator();
             ++at)
            keys.insert((*at)[1]);
    }
    return keys;
}

/// Adds the path of every key within the value.
void collect(const nlohmann::json& value, const std::string& path, Keys& keys) {
    if (value.is_object()) {
        for (const auto& [key, member] : value.items())
            collect(member, path.empty() ? key : path + "." + key, keys);
    } else if (value.is_array()) {
        for (const auto& entry : value)
            collect(entry, path + "[]", keys);
    }
    if (!path.empty()) keys.insert(path);
}

/// The paths of a program's output that contain no further arrays or objects.
Keys leavesOf(const nlohmann::json& document) {
    Keys keys;
    collect(document, "", keys);
    std::erase_if(keys, [&](const std::string& key) {
        const auto next = keys.upper_bound(key);
        return key != "scene" && next != keys.end()
               && (next->starts_with(key + ".") || next->starts_with(key + "["));
    });
    return keys;
}

class Formats : public test::ProgramTest {
  protected:
    std::string
    outputOf(const std::string& arguments, const std::string& environment = "ORVANE_DRIVERS=virtual") {
        const std::string program = test::builtProgram("orvane-cli");
        EXPECT_EQ(exitCodeOfShell(environment + " " + program + " " + arguments), 0) << errors();
        return output();
    }
};

TEST_F(Formats, CommandOutputIsDocumented) {
    EXPECT_EQ(leavesOf(nlohmann::json::parse(outputOf("devices --json"))), documentedKeys("devices --json"));
    EXPECT_EQ(
        leavesOf(nlohmann::json::parse(outputOf("plugins --json", "LV2_PATH=/usr/lib/lv2"))),
        documentedKeys("plugins --json")
    );

    const auto report = folder / "report.json";
    outputOf(
        "render --input " + test::panelRecording().string() + " --output '" + (folder / "mix.wav").string()
        + "' --report '" + report.string() + "'"
    );
    EXPECT_EQ(leavesOf(nlohmann::json::parse(contentOf(report))), documentedKeys("render --report"));

    std::istringstream lines(outputOf("run --device virtual:panel --channels 2 --seconds 0.1 --meters json"));
    std::string line;
    ASSERT_TRUE(std::getline(lines, line));
    nlohmann::json meters = nlohmann::json::parse(line);
    EXPECT_TRUE(meters["scene"].is_null());
    meters["scene"] = {{"number", 1}, {"name", "Gala"}};
    EXPECT_EQ(leavesOf(meters), documentedKeys("run --meters json"));
}

TEST_F(Formats, SessionKeysAreDocumented) {
    // Enough sessions for every optional key to occur.
    Keys found;
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
        collect(
            nlohmann::json::parse(session::encodeMixerDocument(test::randomDocument(seed)).value()), "", found
        );
    // Channels, slots, scenes and routings are documented once each.
    Keys keys;
    const std::regex outer(
        R"(^(snapshots\[\]\.)?(channels\[\]\.)?(pluginSlots\[\]\.)?((output|masterOutput)Routing\.)?)"
    );
    for (const std::string& key : found) {
        if (!key.ends_with("[]")) keys.insert(std::regex_replace(key, outer, ""));
    }
    Keys documented;
    for (const std::string& key : documentedKeys("Session file"))
        documented.insert(key.ends_with("[]") ? key.substr(0, key.size() - 2) : key);
    EXPECT_EQ(keys, documented);
}

} // namespace
