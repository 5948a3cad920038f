#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_midi_driver.h"
#include "support/received_midi.h"

#include <gmock/gmock.h>

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using orvane::platform::virtual_devices::VirtualMIDIDriver;
using orvane::test::ReceivedMIDI;
using testing::ElementsAre;

using Listed = std::vector<std::vector<MIDIDriverSource>>;

std::vector<std::pair<std::string, std::int32_t>> namesAndIDs(const MIDISourceRegistry& registry) {
    std::vector<std::pair<std::string, std::int32_t>> found;
    for (const MIDISource& source : registry.present())
        found.emplace_back(source.name, source.uniqueID);
    return found;
}

TEST(MIDISourceRegistry, GivesASourceTheSameIDInEveryProcessAndAtEveryAddress) {
    // FNV-1a of "alsa:Keys:0", computed independently.
    constexpr auto idOfKeys = static_cast<std::int32_t>(0xE403D4C0U);
    MIDISourceRegistry registry;
    registry.update({{{"20:0", "alsa:Keys:0", "Keys"}}});
    const MIDIEndpointRef endpoint = registry.present().at(0).endpoint;
    EXPECT_EQ(registry.present()[0].uniqueID, idOfKeys);
    registry.update({{}});
    EXPECT_EQ(registry.findPresent(endpoint), nullptr);
    ASSERT_NE(registry.find(endpoint), nullptr);
    registry.update({{{"16:0", "alsa:Pads:0", "Pads"}, {"28:0", "alsa:Keys:0", "Keys"}}});
    EXPECT_EQ(registry.present().at(1).uniqueID, idOfKeys);
    EXPECT_EQ(registry.present()[1].endpoint, endpoint);
    EXPECT_EQ(registry.find(endpoint)->address, "28:0");
}

TEST(MIDISourceRegistry, DistinguishesSourcesOfTheSameNameByAddress) {
    const MIDIDriverSource first{"20:0", "alsa:Keys:0", "first"};
    const MIDIDriverSource second{"24:0", "alsa:Keys:0", "second"};
    MIDISourceRegistry registry;
    registry.update({{first, second}});
    const auto both = namesAndIDs(registry);
    EXPECT_NE(both[0].second, both[1].second);
    registry.update({{second}});
    EXPECT_THAT(namesAndIDs(registry), ElementsAre(both[1]));
    registry.update({{second, {"28:0", "alsa:Keys:0", "first"}}});
    EXPECT_THAT(namesAndIDs(registry), ElementsAre(both[1], both[0]));
    MIDISourceRegistry ofAnotherProcess;
    ofAnotherProcess.update({{first, second}});
    EXPECT_EQ(namesAndIDs(ofAnotherProcess), both);
}

TEST(MIDISourceRegistry, ListsAKeyboardOnceThatIsReachedDirectlyAndOverABridge) {
    const MIDIDriverSource direct{"20:0", "alsa:Keys:0", "Keys"};
    const MIDIDriverSource bridge{"Midi-Bridge:Keys", "alsa:Keys:0", "bridged Keys", true};
    const MIDIDriverSource program{"Synth:out", "jack:Synth:out", "Synth"};
    const std::pair<Listed, std::vector<std::string>> cases[] = {
        {{{direct}, {program, bridge}}, {"Keys", "Synth"}},
        {{{}, {program, bridge}}, {"Synth", "bridged Keys"}},
        {{{direct, direct}, {bridge, bridge}}, {"Keys", "Keys"}}};
    for (const auto& [listed, expected] : cases) {
        MIDISourceRegistry registry;
        registry.update(listed);
        std::vector<std::string> names;
        for (const MIDISource& source : registry.present())
            names.push_back(source.name);
        EXPECT_EQ(names, expected);
    }
    MIDISourceRegistry registry;
    registry.update({{direct}, {bridge}});
    const std::int32_t id = registry.present().at(0).uniqueID;
    registry.update({{}, {bridge}});
    EXPECT_EQ(registry.present().at(0).uniqueID, id) << "the same keyboard over another way";
}

/// Services over two drivers with virtual sources.
class SystemMIDIServicesTest : public testing::Test {
  protected:
    std::vector<std::unique_ptr<MIDIDriver>> makeDrivers() {
        std::vector<std::unique_ptr<MIDIDriver>> made;
        for (VirtualMIDIDriver*& driver : drivers) {
            auto one = std::make_unique<VirtualMIDIDriver>();
            driver = one.get();
            made.push_back(std::move(one));
        }
        return made;
    }

    [[nodiscard]] std::unique_ptr<MIDIOwnSource> makeSource(std::size_t driver, const char* name) const {
        return drivers.at(driver)->createSource(name).value();
    }

    std::array<VirtualMIDIDriver*, 2> drivers{};
    SystemMIDIServices services{makeDrivers()};
};

TEST_F(SystemMIDIServicesTest, DeliverToEachPortFromItsConnectedSources) {
    const auto keys = makeSource(0, "Keys");
    const auto pads = makeSource(1, "Pads");
    ReceivedMIDI ofOne;
    ReceivedMIDI ofBoth;
    int changes = 0;
    const auto client = services.MIDIClientCreateWithBlock("client", [&] { ++changes; }).object;
    const auto one = services.MIDIInputPortCreateWithBlock(client, "one", ofOne.receiver()).object;
    const auto both = services.MIDIInputPortCreateWithBlock(client, "both", ofBoth.receiver()).object;
    ASSERT_EQ(services.MIDIGetNumberOfSources(), 2U);
    const MIDIEndpointRef first = services.MIDIGetSource(0);
    const MIDIEndpointRef second = services.MIDIGetSource(1);
    EXPECT_EQ(services.MIDIObjectGetStringProperty(second, kMIDIPropertyDisplayName).value, "Pads");
    EXPECT_EQ(services.MIDIObjectGetStringProperty(99, kMIDIPropertyDisplayName).status, kMIDIObjectNotFound);
    EXPECT_EQ(services.MIDIPortConnectSource(one, second), noErr);
    EXPECT_EQ(services.MIDIPortConnectSource(both, first), noErr);
    EXPECT_EQ(services.MIDIPortConnectSource(both, second), noErr);
    EXPECT_EQ(services.MIDIPortConnectSource(99, first), kMIDIInvalidPort);
    EXPECT_EQ(services.MIDIPortConnectSource(one, 99), kMIDIUnknownEndpoint);
    EXPECT_EQ(
        services.MIDIInputPortCreateWithBlock(99, "port", [](MIDIPacketList) {}).status, kMIDIInvalidClient
    );

    EXPECT_EQ(keys->send(std::array<std::uint8_t, 1>{0xF8}), noErr);
    EXPECT_EQ(pads->send(std::array<std::uint8_t, 1>{0xFA}), noErr);
    EXPECT_EQ(services.MIDIPortDisconnectSource(both, second), noErr);
    EXPECT_EQ(services.MIDIPortDispose(one), noErr);
    EXPECT_EQ(pads->send(std::array<std::uint8_t, 1>{0xFC}), kMIDINoConnection);
    EXPECT_THAT(ofOne.get(), ElementsAre(ElementsAre(0xFA)));
    EXPECT_THAT(ofBoth.get(), ElementsAre(ElementsAre(0xF8), ElementsAre(0xFA)));
    EXPECT_EQ(services.MIDIClientDispose(client), noErr);
    EXPECT_EQ(keys->send(std::array<std::uint8_t, 1>{0xF8}), kMIDINoConnection) << "its ports went with it";
    EXPECT_EQ(services.MIDIPortDispose(both), kMIDIInvalidPort);
    const auto pedals = makeSource(0, "Pedals");
    EXPECT_EQ(changes, 0);
}

} // namespace
