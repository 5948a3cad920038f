#include "plugins/insert_components.h"
#include "support/scripted_audio_unit.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using namespace orvane;

TEST(InsertComponents, AreListedOnceByMakerAndNameWhateverTheirCase) {
    test::ScriptedAudioUnitHost host;
    const auto add = [&host](const char* maker, const char* name, std::uint32_t subType) {
        host.components.push_back({{platform::kAudioUnitType_Effect, subType, 1}, name, maker});
        return &host.components.back().audioComponentDescription;
    };
    add("b Co", "Aaa", 1);
    add("A Co", "beta", 2);
    add("A Co", "Alpha", 3);
    add("a co", "ALPHA", 4);
    add("A Co", "Zoom", 2);
    add("\xFF", "not UTF-8", 5);
    add("A Co", "Above", 2)->componentType = platform::kAudioUnitType_MusicEffect;
    add("A Co", "Instrument", 9)->componentType = 7;
    std::vector<std::string> names;
    for (const auto& component : plugins::availableInsertComponents(host))
        names.push_back(component.manufacturerName + ": " + component.name);
    EXPECT_THAT(
        names, testing::ElementsAre(
                   "A Co: Above", "A Co: Alpha", "a co: ALPHA", "A Co: beta", "b Co: Aaa", "\xFF: not UTF-8"
               )
    );
    host.components.clear();
    EXPECT_TRUE(plugins::availableInsertComponents(host).empty());
}

} // namespace
