#include "platform/jack/jack_devices.h"

#include "platform/audio_hardware/card_sides.h"
#include "platform/base/natural_order.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

namespace orvane::platform::jack {

namespace {

constexpr std::string_view uidPrefix = "jack:";
constexpr std::string_view allPortsUid = "jack:all";
constexpr std::string_view allPortsName = "All JACK ports";

/// A client with hardware ports, or two that are the same card.
struct Card {
    std::string name;
    /// The card that the ports' aliases name; empty if they do not.
    std::string alsaCard;
    std::vector<std::string> captures;
    std::vector<std::string> playbacks;

    [[nodiscard]] bool onlyCaptures() const { return playbacks.empty(); }
    [[nodiscard]] bool onlyPlays() const { return captures.empty(); }
};

using Ports = std::vector<const JackPort*>;

std::string clientOf(const JackPort& port) {
    return port.name.substr(0, port.name.find(':'));
}

bool isPhysicalCapture(const JackPort* port) {
    return port->isPhysical && port->isOutput;
}

bool isPhysicalPlayback(const JackPort* port) {
    return port->isPhysical && !port->isOutput;
}

/// PipeWire's virtual sources mark the ports that feed them as hardware, but not those that they offer.
bool isVirtualCapture(const JackPort* port) {
    return port->isOutput && port->name.starts_with(clientOf(*port) + ":capture_");
}

template <class Condition>
std::vector<std::string> namesInOrder(const Ports& ports, Condition condition) {
    std::vector<std::string> names;
    for (const JackPort* port : ports)
        if (condition(port)) names.push_back(port->name);
    // Ports named after speakers come in the server's order, which is that of the channels.
    const bool areNumbered = std::ranges::all_of(names, [](const std::string& name) {
        return std::isdigit(static_cast<unsigned char>(name.back())) != 0;
    });
    if (areNumbered) std::ranges::sort(names, comesNaturallyBefore);
    return names;
}

/// The part of an alias such as "alsa:pcm:X32:hw:X32,0:capture:capture_0" up to the card.
std::string alsaCardOf(const Ports& ports) {
    constexpr std::size_t partCount = 3;
    for (const JackPort* port : ports) {
        for (const std::string& alias : port->aliases) {
            if (!alias.starts_with("alsa:")) continue;
            auto end = alias.begin();
            for (std::size_t part = 0; part < partCount && end != alias.end(); ++part)
                end = std::find(part == 0 ? end : std::next(end), alias.end(), ':');
            return {alias.begin(), end};
        }
    }
    return {};
}

Card makeCard(const std::string& client, const Ports& ports) {
    Card card{
        client, alsaCardOf(ports), namesInOrder(ports, isPhysicalCapture),
        namesInOrder(ports, isPhysicalPlayback)};
    if (!card.onlyPlays() || card.playbacks.empty()) return card;
    card.captures = namesInOrder(ports, isVirtualCapture);
    if (!card.captures.empty()) card.playbacks.clear();
    return card;
}

std::string commonName(const Card& card) {
    return nameOfBothSides(card.name);
}

std::string alsaCardName(const Card& card) {
    return card.alsaCard;
}

void takeInCaptures(Card& playing, const Card& capturing) {
    const std::string name = commonName(playing);
    if (name == commonName(capturing)) playing.name = name;
    playing.captures = capturing.captures;
}

/// Joins each capture-only card with the playback-only card of the same `key`, if no other card has this key.
void joinSides(std::vector<Card>& cards, std::string (*key)(const Card&)) {
    for (std::size_t i = 0; i < cards.size();) {
        const std::string sought = cards[i].onlyCaptures() ? key(cards[i]) : std::string();
        const auto matches = [&](const Card& card) { return !sought.empty() && key(card) == sought; };
        const auto match =
            std::ranges::find_if(cards, [&](const Card& card) { return card.onlyPlays() && matches(card); });
        if (match == cards.end() || std::ranges::count_if(cards, matches) != 2) {
            ++i;
            continue;
        }
        takeInCaptures(*match, cards[i]);
        cards.erase(cards.begin() + static_cast<std::ptrdiff_t>(i));
    }
}

JackDevice allPortsOf(const std::vector<JackDevice>& devices) {
    JackDevice all{std::string(allPortsUid), std::string(allPortsName), {}, {}};
    for (const JackDevice& device : devices) {
        std::ranges::copy(device.inputPorts, std::back_inserter(all.inputPorts));
        std::ranges::copy(device.outputPorts, std::back_inserter(all.outputPorts));
    }
    return all;
}

} // namespace

std::vector<JackDevice> jackDevices(std::span<const JackPort> ports) {
    std::map<std::string, Ports> clients;
    for (const JackPort& port : ports)
        clients[clientOf(port)].push_back(&port);

    std::vector<Card> cards;
    for (const auto& [client, clientPorts] : clients) {
        Card card = makeCard(client, clientPorts);
        if (!card.captures.empty() || !card.playbacks.empty()) cards.push_back(std::move(card));
    }
    joinSides(cards, commonName);
    joinSides(cards, alsaCardName);
    std::ranges::sort(cards, comesNaturallyBefore, &Card::name);

    std::vector<JackDevice> devices;
    devices.reserve(cards.size() + 1);
    for (const Card& card : cards)
        devices.push_back({std::string(uidPrefix) + card.name, card.name, card.captures, card.playbacks});
    if (devices.size() > 1) devices.push_back(allPortsOf(devices));
    return devices;
}

} // namespace orvane::platform::jack
