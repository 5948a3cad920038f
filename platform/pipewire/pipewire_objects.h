#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace orvane::platform::pipewire {

/// An id of the server for one of its objects. The ids of removed objects are given to others.
using ObjectId = std::uint32_t;

/// A card, as the server lists it. A plain value.
struct PipeWireCard {
    std::string name;
    std::string description;
};

/// A node: anything that plays, captures or processes. A plain value.
struct PipeWireNode {
    std::string name;
    std::string description;
    /// "Audio/Sink", for example; empty if it is no hardware.
    std::string mediaClass;
    /// Where it is in its sound system: "alsa:pcm:2:hw:2,1:capture", for example.
    std::string path;
    /// The card that it is a part of.
    std::optional<ObjectId> card;
};

/// A port of a node. A plain value.
struct PipeWirePort {
    /// Never given to another object.
    std::uint64_t serial = 0;
    ObjectId node = 0;
    /// Its place among the node's ports of its direction.
    std::uint32_t number = 0;
    std::string name = {};
    std::string alias = {};
    /// What its buffers carry.
    std::string format = {};
    /// Whether it sends to others, as the capture ports of hardware do.
    bool isOutput = false;
};

/// What a server lists. A plain value.
struct PipeWireObjects {
    std::map<ObjectId, PipeWireCard> cards;
    std::map<ObjectId, PipeWireNode> nodes;
    std::map<ObjectId, PipeWirePort> ports;
    /// The port that each link sends from.
    std::map<ObjectId, ObjectId> links;
    /// The name of the node that programs play on unless they choose another; empty without a session
    /// manager.
    std::string defaultSink = {};
};

/// The formats of ports that carry one channel of audio, and MIDI messages.
inline constexpr const char* audioFormat = "32 bit float mono audio";
inline constexpr const char* midiFormat = "8 bit raw midi";

} // namespace orvane::platform::pipewire
