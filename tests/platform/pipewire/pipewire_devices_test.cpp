#include "platform/pipewire/missed_cycles.h"
#include "platform/pipewire/pipewire_devices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace orvane::platform::pipewire;

/// Adds a node with ports of one direction, the last one first; their ids are their places plus 100 x `id`.
void add(
    PipeWireObjects& objects, ObjectId id, const PipeWireNode& node, std::uint32_t count, bool isOutput
) {
    objects.nodes[id] = node;
    for (std::uint32_t number = count; number-- > 0;)
        objects.ports[100 * id + number] = {
            .node = id, .number = number, .format = audioFormat, .isOutput = isOutput};
}

/// "uid|name inputs/outputs", with the ids of the ports.
std::vector<std::string> described(const PipeWireObjects& objects) {
    std::vector<std::string> lines;
    for (const PipeWireDevice& device : pipeWireDevices(objects)) {
        std::string line = device.uid + "|" + device.name;
        for (const auto& port : device.inputPorts)
            line += " " + std::to_string(port.id);
        line += " /";
        for (const auto& port : device.outputPorts)
            line += " " + std::to_string(port.id);
        lines.push_back(line);
    }
    return lines;
}

TEST(PipeWireDevices, AreTheDefaultThenOtherCardsAndTheirFurtherPCMsAndFreeNodes) {
    PipeWireObjects objects;
    objects.cards[9] = {"alsa_card.usb", "USB Mixer"};
    objects.cards[8] = {"alsa_card.pci", "Built-in"};
    add(objects, 1, {"usb.out", "USB Mixer Pro", "Audio/Sink", "alsa:pcm:2:hw:2,0:playback", 9}, 2, false);
    add(objects, 2, {"usb.in", "USB Mixer Pro", "Audio/Source", "alsa:pcm:2:hw:2,0:capture", 9}, 3, true);
    add(objects, 3, {"pci.hdmi", "Built-in HDMI", "Audio/Sink", "alsa:pcm:0:hw:0,3:playback", 8}, 1, false);
    add(objects, 4, {"pci.out", "Built-in Pro", "Audio/Sink", "alsa:pcm:0:hw:0,0:playback", 8}, 1, false);
    add(objects, 5, {"pci.in", "Built-in Pro", "Audio/Source", "alsa:pcm:0:hw:0,0:capture", 8}, 1, true);
    add(objects, 6, {"free_in", "Free In", "Audio/Source/Virtual", "", {}}, 1, true);
    add(objects, 7, {"free_out", "Free Out", "Audio/Sink", "", {}}, 1, false);
    add(objects, 10, {"alone", "", "Audio/Sink", "", {}}, 1, false);
    add(objects, 11, {"player", "Player", "Stream/Output/Audio", "", {}}, 2, true);
    // What a sink plays can be captured, but is not its input.
    objects.ports[150] = {.node = 1, .format = audioFormat, .isOutput = true};
    objects.defaultSink = "usb.out";
    EXPECT_EQ(
        described(objects),
        (std::vector<std::string>{
            "pipewire:alsa_card.usb|USB Mixer 200 201 202 / 100 101",
            "pipewire:alsa_card.pci|Built-in 500 / 400", "pipewire:alsa_card.pci,3|Built-in HDMI / 300",
            "pipewire:free|Free 600 / 700", "pipewire:alone|alone / 1000"})
    );
}

TEST(MissedCycles, AreGapsAndLateCyclesOfASettledClockOnly) {
    MissedCycles missed;
    MissedCycles::Cycle cycle{.clock = 1, .rate = 48000, .position = 0, .duration = 64, .age = 1000};
    const auto settle = [&] {
        for (unsigned i = 0; i < MissedCycles::cyclesUntilSettled; ++i, cycle.position += 64)
            EXPECT_EQ(missed.before(cycle), 0U);
    };
    cycle.age = 2'000'000;
    settle();
    EXPECT_EQ(missed.before(cycle), 1U) << "late by more than a cycle";
    cycle.age = 1000;
    cycle.position += 64 * 4;
    EXPECT_EQ(missed.before(cycle), 3U);
    cycle.position -= 64 * 8;
    EXPECT_EQ(missed.before(cycle), 0U) << "a clock set back";
    cycle.position += 64 * 100;
    cycle.rate = 44100;
    settle();
    cycle.position += 64;
    EXPECT_EQ(missed.before(cycle), 1U);
}

} // namespace
