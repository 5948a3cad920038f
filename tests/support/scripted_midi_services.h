#pragma once

#include "platform/midi_services/midi_services.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {

/// MIDI services with scripted sources and failures, which record calls. One thread.
class ScriptedMIDIServices final : public platform::MIDIServices {
  public:
    struct Source {
        platform::MIDIEndpointRef endpoint = 0;
        std::optional<std::int32_t> uniqueID = {};
        std::optional<std::string> name = {};
        platform::OSStatus connectStatus = platform::noErr;
    };

    static constexpr platform::MIDIClientRef client = 1;
    static constexpr platform::MIDIPortRef port = 2;

    NewObject MIDIClientCreateWithBlock(std::string_view name, platform::MIDINotifyBlock block) override {
        calls.push_back("create client " + std::string(name));
        if (clientStatus != platform::noErr) return {clientStatus, 0};
        notify = std::move(block);
        return {platform::noErr, client};
    }

    NewObject MIDIInputPortCreateWithBlock(
        platform::MIDIClientRef ofClient, std::string_view name, platform::MIDIReadBlock block
    ) override {
        calls.push_back("create port " + std::string(name) + " of " + std::to_string(ofClient));
        if (portStatus != platform::noErr) return {portStatus, 0};
        read = std::move(block);
        return {platform::noErr, port};
    }

    std::size_t MIDIGetNumberOfSources() override { return sources.size(); }
    platform::MIDIEndpointRef MIDIGetSource(std::size_t index) override {
        return index < sources.size() ? sources[index].endpoint : 0;
    }

    IntegerProperty MIDIObjectGetIntegerProperty(platform::MIDIObjectRef object, std::string_view) override {
        const auto found = std::ranges::find(sources, object, &Source::endpoint);
        if (found == sources.end() || !found->uniqueID) return {platform::kMIDIUnknownProperty, 0};
        return {platform::noErr, *found->uniqueID};
    }

    StringProperty MIDIObjectGetStringProperty(platform::MIDIObjectRef object, std::string_view) override {
        const auto found = std::ranges::find(sources, object, &Source::endpoint);
        return {stringStatus, found == sources.end() ? std::nullopt : found->name};
    }

    platform::OSStatus
    MIDIPortConnectSource(platform::MIDIPortRef ofPort, platform::MIDIEndpointRef source) override {
        calls.push_back("connect " + std::to_string(source));
        if (ofPort != port) return platform::kMIDIInvalidPort;
        const auto found = std::ranges::find(sources, source, &Source::endpoint);
        return found == sources.end() ? platform::kMIDIUnknownEndpoint : found->connectStatus;
    }

    platform::OSStatus
    MIDIPortDisconnectSource(platform::MIDIPortRef, platform::MIDIEndpointRef source) override {
        calls.push_back("disconnect " + std::to_string(source));
        return platform::kMIDINoConnection;
    }

    platform::OSStatus MIDIPortDispose(platform::MIDIPortRef disposed) override {
        calls.push_back("dispose of port " + std::to_string(disposed));
        return platform::noErr;
    }
    platform::OSStatus MIDIClientDispose(platform::MIDIClientRef disposed) override {
        calls.push_back("dispose of client " + std::to_string(disposed));
        return platform::noErr;
    }

    /// Returns the calls since the last time.
    std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

    std::vector<Source> sources;
    platform::OSStatus clientStatus = platform::noErr;
    platform::OSStatus portStatus = platform::noErr;
    platform::OSStatus stringStatus = platform::noErr;
    /// Kept after their disposal, because services may call late.
    platform::MIDINotifyBlock notify;
    platform::MIDIReadBlock read;

  private:
    std::vector<std::string> calls;
};

} // namespace orvane::test
