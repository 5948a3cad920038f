#include "platform/pipewire/pipewire_devices.h"

#include "platform/audio_hardware/card_sides.h"
#include "platform/base/natural_order.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

namespace orvane::platform::pipewire {

namespace {

constexpr std::string_view uidPrefix = "pipewire:";
constexpr std::string_view sinkClass = "Audio/Sink";
constexpr std::string_view sourceClass = "Audio/Source";
constexpr std::string_view duplexClass = "Audio/Duplex";

/// A node with hardware ports.
struct Side {
    const PipeWireNode* node = nullptr;
    std::vector<PipeWireDevicePort> captures;
    std::vector<PipeWireDevicePort> playbacks;
};

/// What a sink sends is a monitor of what it plays.
bool isCapture(const PipeWireNode& node, const PipeWirePort& port) {
    return port.isOutput && (node.mediaClass.starts_with(sourceClass) || node.mediaClass == duplexClass);
}

/// What a source receives is what other programs play into a virtual one.
bool isPlayback(const PipeWireNode& node, const PipeWirePort& port) {
    return !port.isOutput && (node.mediaClass.starts_with(sinkClass) || node.mediaClass == duplexClass);
}

std::vector<Side> sidesOf(const PipeWireObjects& objects) {
    using Numbered = std::pair<std::uint32_t, ObjectId>;
    std::map<ObjectId, std::pair<std::vector<Numbered>, std::vector<Numbered>>> portsOf;
    for (const auto& [id, port] : objects.ports) {
        const auto node = objects.nodes.find(port.node);
        if (node == objects.nodes.end() || port.format != audioFormat) continue;
        if (isCapture(node->second, port)) portsOf[port.node].first.emplace_back(port.number, id);
        if (isPlayback(node->second, port)) portsOf[port.node].second.emplace_back(port.number, id);
    }
    const auto inOrder = [&objects](std::vector<Numbered>& numbered) {
        std::ranges::sort(numbered);
        std::vector<PipeWireDevicePort> ports;
        ports.reserve(numbered.size());
        for (const auto& [number, id] : numbered) {
            const PipeWirePort& port = objects.ports.at(id);
            ports.push_back({id, port.node, port.serial});
        }
        return ports;
    };
    std::vector<Side> sides;
    sides.reserve(portsOf.size());
    for (auto& [id, ports] : portsOf)
        sides.push_back({&objects.nodes.at(id), inOrder(ports.first), inOrder(ports.second)});
    std::ranges::sort(sides, {}, [](const Side& side) { return std::string_view(side.node->name); });
    return sides;
}

/// The number of the PCM in a path such as "alsa:pcm:2:hw:2,1:capture"; "0" if the path states none.
std::string pcmNumber(const PipeWireNode& node) {
    const std::size_t comma = node.path.rfind(',');
    if (comma == std::string::npos) return "0";
    return node.path.substr(comma + 1, node.path.find(':', comma) - comma - 1);
}

/// A device of one node, or of two that are the sides of one.
PipeWireDevice join(std::string uid, std::string name, const Side& side, const Side* other) {
    PipeWireDevice device{
        std::string(uidPrefix) + std::move(uid), std::move(name), side.captures, side.playbacks};
    if (other != nullptr)
        (side.captures.empty() ? device.inputPorts : device.outputPorts) =
            side.captures.empty() ? other->captures : other->playbacks;
    return device;
}

const std::string& shownName(const PipeWireNode& node) {
    return node.description.empty() ? node.name : node.description;
}

using Sides = std::vector<const Side*>;

/// Whether they are a sink and a source.
bool areTwoSides(const Sides& sides) {
    return sides.size() == 2 && (sides[0]->captures.empty() != sides[1]->captures.empty())
           && (sides[0]->playbacks.empty() != sides[1]->playbacks.empty());
}

PipeWireDevice freeDevice(const Side& side) {
    return join(side.node->name, shownName(*side.node), side, nullptr);
}

void addCard(const PipeWireCard& card, const Sides& sides, std::vector<PipeWireDevice>& devices) {
    if (sides.size() == 1 || areTwoSides(sides)) {
        const Side* const other = sides.size() == 2 ? sides[1] : nullptr;
        devices.push_back(join(card.name, card.description, *sides[0], other));
        return;
    }
    std::map<std::string, Sides> pcms;
    for (const Side* side : sides)
        pcms[pcmNumber(*side->node)].push_back(side);
    for (const auto& [number, ofPCM] : pcms) {
        if (ofPCM.size() > 1 && !areTwoSides(ofPCM)) {
            for (const Side* side : ofPCM)
                devices.push_back(freeDevice(*side));
            continue;
        }
        // The first PCM is the card, whether or not its present profile has others.
        const bool isFirst = number == "0";
        devices.push_back(join(
            isFirst ? card.name : card.name + "," + number,
            isFirst ? card.description : shownName(*ofPCM[0]->node), *ofPCM[0],
            ofPCM.size() == 2 ? ofPCM[1] : nullptr
        ));
    }
}

void addFree(const Sides& sides, std::vector<PipeWireDevice>& devices) {
    if (!areTwoSides(sides)) {
        for (const Side* side : sides)
            devices.push_back(freeDevice(*side));
        return;
    }
    const std::string uid = nameOfBothSides(sides[0]->node->name);
    const bool haveOneName = uid == nameOfBothSides(sides[1]->node->name);
    const Side& sink = sides[0]->captures.empty() ? *sides[0] : *sides[1];
    devices.push_back(
        join(haveOneName ? uid : sink.node->name, nameOfBothSides(shownName(*sink.node)), *sides[0], sides[1])
    );
}

} // namespace

std::vector<PipeWireDevice> pipeWireDevices(const PipeWireObjects& objects) {
    const std::vector<Side> sides = sidesOf(objects);
    std::map<ObjectId, Sides> ofCards;
    std::map<std::string, Sides> withoutCard;
    for (const Side& side : sides) {
        if (side.node->card && objects.cards.contains(*side.node->card))
            ofCards[*side.node->card].push_back(&side);
        else
            withoutCard
                [side.node->card ? std::to_string(*side.node->card) : nameOfBothSides(shownName(*side.node))]
                    .push_back(&side);
    }
    std::vector<PipeWireDevice> devices;
    for (const auto& [id, ofCard] : ofCards)
        addCard(objects.cards.at(id), ofCard, devices);
    for (const auto& [key, sidesOfOne] : withoutCard)
        addFree(sidesOfOne, devices);
    std::ranges::stable_sort(devices, comesNaturallyBefore, &PipeWireDevice::name);
    const auto chosen = std::ranges::find_if(devices, [&objects](const PipeWireDevice& device) {
        return !device.outputPorts.empty()
               && objects.nodes.at(device.outputPorts.front().node).name == objects.defaultSink;
    });
    if (chosen != devices.end()) std::rotate(devices.begin(), chosen, std::next(chosen));
    return devices;
}

} // namespace orvane::platform::pipewire
