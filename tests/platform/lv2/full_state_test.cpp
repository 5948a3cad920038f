#include "platform/lv2/lv2_unit_host.h"
#include "support/hosted_unit.h"
#include "support/lv2_bundles.h"
#include "support/temporary_folder.h"

#include "scripted_host_test.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <lv2/atom/atom.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace orvane::platform::lv2 {
namespace {

using namespace test;
using Dictionary = PropertyList::Dictionary;

class FullState : public test::ScriptedHostTest {};

Dictionary value(const char* type, PropertyList::Data data) {
    Dictionary encoded;
    encoded["type"].value = std::string(type);
    encoded["flags"].value = std::int64_t{3};
    encoded["value"].value = std::move(data);
    return encoded;
}

Dictionary& inside(PropertyList& list, const std::string& key) {
    return std::get<Dictionary>(std::get<Dictionary>(list.value)[key].value);
}

TEST_F(FullState, KeepsTheStateOfAPluginThatReportsAFailure) {
    const auto unit = make("plain");
    const auto whole = unit->fullState();
    probe().deniesState.store(true);
    EXPECT_EQ(unit->fullState(), whole);
    EXPECT_TRUE(unit->setFullState(*whole));
    probe().deniesState.store(false);
    log.flush();
    EXPECT_THAT(
        lines, testing::ElementsAre(
                   "plain: the plugin could not save all of its state.",
                   "plain: the plugin could not restore all of its state."
               )
    );
}

TEST_F(FullState, KeepsOnlyValuesThatAreValidInAnotherProcess) {
    const auto first = make("plain");
    PropertyList list{*first->fullState()};
    inside(list, "state")["urn:orvane:test:number"].value = value(LV2_ATOM__Int, {42, 0, 0, 0});
    inside(list, "state")["urn:orvane:test:text"].value = value(LV2_ATOM__String, {'h', 'i', 0});
    std::get<Dictionary>(inside(list, "state")["urn:orvane:test:choice"].value)["value"].value =
        std::string("urn:orvane:test:other");
    std::get<Dictionary>(inside(list, "state")["urn:orvane:test:floats"].value)["value"].value =
        PropertyList::Data{0, 0, 0, 63, 0, 0, 128, 63};
    inside(list, "controls")["gain"].value = 0.75;
    EXPECT_TRUE(first->setFullState(std::get<Dictionary>(list.value)));
    const Dictionary state = *first->fullState();
    EXPECT_EQ(state, std::get<Dictionary>(list.value));
    EXPECT_EQ(std::get<Dictionary>(state.at("state").value).size(), 6U) << "no pointer, no object";

    // Another host has other numbers for the URIs.
    Lv2UnitHost otherHost(log, bundles.searchPath());
    test::instantiate(otherHost, "safe");
    const auto second = test::instantiate(otherHost, "plain").unit;
    EXPECT_TRUE(second->setFullState(state));
    EXPECT_EQ(second->fullState(), state);
    // The state carries over to the instance for another rate.
    ASSERT_EQ(setUp(*second, 1, 96000.0), "");
    EXPECT_EQ(second->fullState(), state);
}

TEST_F(FullState, AStateGivesAccessOnlyToExistingRegularFiles) {
    const test::TemporaryFolder folder;
    folder.add("room.wav", "");
    const std::string file = (folder / "room.wav").string();
    const std::string folderPath = (folder / "").string();
    const std::pair<std::string, std::string> cases[] = {
        {file, ""},
        {"", ""},
        {file + "2", "cannot be found"},
        {folderPath, "is not a regular file"},
        {"/dev/zero", "is not a regular file"},
        {"room.wav", "is not an absolute path"}};
    for (const auto& [key, type] :
         {std::pair{"urn:orvane:test:path", LV2_ATOM__Path},
          {"urn:orvane:test:pathAsText", LV2_ATOM__String}}) {
        for (const auto& [path, reason] : cases) {
            SCOPED_TRACE(fmt::format("{} as {}", path, type));
            const auto unit = make("plain");
            PropertyList list{*unit->fullState()};
            PropertyList::Data data(path.begin(), path.end());
            data.push_back(0);
            inside(list, "state")[key].value = value(type, data);
            const auto given = unit->setFullState(std::get<Dictionary>(list.value));
            if (!reason.empty()) data = {0};
            PropertyList after{*unit->fullState()};
            EXPECT_EQ(inside(after, "state")[key], PropertyList{value(type, data)});
            EXPECT_EQ(
                given ? std::string() : given.error().description,
                reason.empty() ? std::string()
                               : fmt::format(
                                   "\"plain\" is without its file \"{}\", which {}; choose the file again in "
                                   "the effect's editor.",
                                   path, reason
                               )
            );
        }
    }
}

TEST_F(FullState, InvalidPartsOfAStateChangeNothing) {
    const auto unit = make("plain");
    const Dictionary before = *unit->fullState();
    const auto tryState = [&](const std::string& what, const auto& spoil) {
        PropertyList list{before};
        spoil(list);
        EXPECT_TRUE(unit->setFullState(std::get<Dictionary>(list.value)));
        EXPECT_EQ(unit->fullState(), before) << what;
    };
    const auto root = [](PropertyList& list) -> Dictionary& { return std::get<Dictionary>(list.value); };

    tryState("empty", [&](PropertyList& list) { root(list).clear(); });
    tryState("another plugin's", [&](PropertyList& list) {
        root(list)["uri"].value = std::string("urn:other");
        inside(list, "controls")["gain"].value = 1.0;
    });
    for (const char* key : {"uri", "controls", "state"}) {
        tryState(std::string("without ") + key, [&](PropertyList& list) { root(list).erase(key); });
        tryState(std::string(key) + " of another kind", [&](PropertyList& list) {
            root(list)[key].value = PropertyList::Array(3);
        });
    }
    for (const double gain : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300})
        tryState("gain " + std::to_string(gain), [&](PropertyList& list) {
            inside(list, "controls")["gain"].value = gain;
        });
    tryState("controls that are none", [&](PropertyList& list) {
        inside(list, "controls")["gain"].value = std::string("1");
        inside(list, "controls")["answer"].value = 1.0;
        inside(list, "controls")[""].value = true;
    });

    const std::pair<const char*, Dictionary> values[] = {
        {"number", {}},
        {"number", value(LV2_ATOM__Int, {1})},
        {"number", value("", {9, 0, 0, 0})},
        {"text", value(LV2_ATOM__String, {'a', 'b'})},
        {"text", value(LV2_ATOM__String, {})},
        {"choice", value(LV2_ATOM__URID, {9, 0, 0, 0})},
        {"floats", value(LV2_ATOM__Vector, {1, 2, 3})},
        {"path", value(LV2_ATOM__Path, {'/', 'x'})}};
    for (const auto& each : values)
        tryState(each.first, [&](PropertyList& list) {
            inside(list, "state")["urn:orvane:test:" + std::string(each.first)].value = each.second;
        });
    for (const char* field : {"type", "flags", "value", "elementType"})
        for (const std::int64_t wrong : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::max()})
            tryState(field, [&](PropertyList& list) {
                for (auto& [key, encoded] : inside(list, "state"))
                    std::get<Dictionary>(encoded.value)[field].value = wrong;
            });
}

} // namespace
} // namespace orvane::platform::lv2
