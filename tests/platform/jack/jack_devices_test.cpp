#include "platform/jack/jack_devices.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace orvane::platform::jack {

void PrintTo(const JackDevice& device, std::ostream* out) {
    *out << device.uid << " (" << device.name << ") " << testing::PrintToString(device.inputPorts) << " "
         << testing::PrintToString(device.outputPorts);
}

} // namespace orvane::platform::jack

namespace {

using orvane::platform::jack::JackDevice;
using orvane::platform::jack::jackDevices;
using orvane::platform::jack::JackPort;

JackPort capture(const std::string& name, const std::string& alias = "other:1") {
    return {name, {alias}, true, true};
}

JackPort playback(const std::string& name, const std::string& alias = "other:1") {
    return {name, {alias}, false, true};
}

struct CardCase {
    std::string description;
    std::vector<JackPort> ports;
    std::vector<JackDevice> devices;
};

const CardCase cardCases[] = {
    {"nothing", {}, {}},
    {"programs without hardware ports",
     {{"player:out_1", {}, true, false}, {"recorder:in_1", {}, false, false}},
     {}},
    {"the classic server, its ports in any order",
     {playback("system:playback_2"), capture("system:capture_10"), capture("system:capture_2"),
      playback("system:playback_1")},
     {{"jack:system",
       "system",
       {"system:capture_2", "system:capture_10"},
       {"system:playback_1", "system:playback_2"}}}},
    {"ports named by speaker, in the server's order",
     {playback("Desk:playback_FL"), playback("Desk:playback_FR"), playback("Desk:playback_FC")},
     {{"jack:Desk", "Desk", {}, {"Desk:playback_FL", "Desk:playback_FR", "Desk:playback_FC"}}}},
    {"monitors of a playback client",
     {playback("Desk:playback_1"), {"Desk:monitor_1", {}, true, false}},
     {{"jack:Desk", "Desk", {}, {"Desk:playback_1"}}}},
    {"a virtual source, fed through ports that look like hardware",
     {playback("Tap:input_1"), {"Tap:capture_1", {}, true, false}},
     {{"jack:Tap", "Tap", {"Tap:capture_1"}, {}}}},
    {"two sides that differ in the last word",
     {playback("Card 8 Out:playback_1"), capture("Card 8 In:capture_1")},
     {{"jack:Card 8", "Card 8", {"Card 8 In:capture_1"}, {"Card 8 Out:playback_1"}}}},
    {"two sides with other words and separators",
     {playback("desk_PLAYBACK:p1"), capture("desk - input:c1")},
     {{"jack:desk", "desk", {"desk - input:c1"}, {"desk_PLAYBACK:p1"}}}},
    {"two sides by the card that their aliases name",
     {capture("Desk Pro:capture_1", "alsa:pcm:X32:hw:X32,0:capture:capture_0"),
      playback("Desk Multichannel:playback_1", "alsa:pcm:X32:hw:X32,0:playback:playback_0")},
     {{"jack:Desk Multichannel",
       "Desk Multichannel",
       {"Desk Pro:capture_1"},
       {"Desk Multichannel:playback_1"}}}},
    {"two cards by their aliases",
     {capture("B:capture_1", "alsa:pcm:B:hw:B:capture:capture_0"),
      playback("A:playback_1", "alsa:pcm:A:hw:A:playback:playback_0")},
     {{"jack:A", "A", {}, {"A:playback_1"}},
      {"jack:B", "B", {"B:capture_1"}, {}},
      {"jack:all", "All JACK ports", {"B:capture_1"}, {"A:playback_1"}}}},
    {"sides of which there are too many to tell",
     {capture("Card In:1"), playback("Card Out:1"), playback("Card Output:1")},
     {{"jack:Card In", "Card In", {"Card In:1"}, {}},
      {"jack:Card Out", "Card Out", {}, {"Card Out:1"}},
      {"jack:Card Output", "Card Output", {}, {"Card Output:1"}},
      {"jack:all", "All JACK ports", {"Card In:1"}, {"Card Out:1", "Card Output:1"}}}},
    {"clients that are called by a direction alone",
     {capture("In:1"), playback("Out:1")},
     {{"jack:In", "In", {"In:1"}, {}},
      {"jack:Out", "Out", {}, {"Out:1"}},
      {"jack:all", "All JACK ports", {"In:1"}, {"Out:1"}}}},
    {"all ports, device by device in natural order",
     {capture("Box 10:c1"), playback("Box 10:p1"), capture("Box 9:c1"), playback("Box 9:p1")},
     {{"jack:Box 9", "Box 9", {"Box 9:c1"}, {"Box 9:p1"}},
      {"jack:Box 10", "Box 10", {"Box 10:c1"}, {"Box 10:p1"}},
      {"jack:all", "All JACK ports", {"Box 9:c1", "Box 10:c1"}, {"Box 9:p1", "Box 10:p1"}}}},
};

TEST(JackDevices, SeesOneDevicePerCard) {
    for (const CardCase& each : cardCases)
        EXPECT_EQ(jackDevices(each.ports), each.devices) << each.description;
}

} // namespace
