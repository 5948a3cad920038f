#include "cli/midi_send.h"

#include "machine/audio_machine.h"
#include "machine/signals.h"
#include "platform/jack/jack_clients.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace orvane::cli {

namespace {

using platform::Done;
using platform::Error;
using platform::MIDIOwnSource;
using platform::Result;
using namespace std::chrono_literals;

constexpr const char* sourceName = "note";
constexpr auto pause = 10ms;
/// The time that a server may take to pass on a new connection or a message.
constexpr auto settlingTime = 200ms;

std::vector<std::string_view> split(std::string_view text) {
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t colon = text.find(':');
        parts.push_back(text.substr(0, colon));
        if (colon == std::string_view::npos) return parts;
        text.remove_prefix(colon + 1);
    }
}

std::optional<std::uint8_t> parseNumber(std::string_view digits, std::uint8_t least, std::uint8_t most) {
    std::uint8_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (error != std::errc() || stop != end || number < least || number > most) return std::nullopt;
    return number;
}

/// Makes the source with the first driver that works.
std::unique_ptr<MIDIOwnSource> makeSource(const std::vector<std::unique_ptr<platform::MIDIDriver>>& drivers) {
    for (const auto& driver : drivers)
        if (auto source = driver->createSource(sourceName)) return std::move(source).value();
    return nullptr;
}

bool waitForListener(MIDIOwnSource& source, double mostSeconds) {
    const machine::InterruptGuard interrupt;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(mostSeconds);
    while (!source.isConnected()) {
        if (interrupt.isInterrupted() || std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

} // namespace

Result<SentNote> parseNote(std::string_view text) {
    const std::vector<std::string_view> parts = split(text);
    if (parts.size() == 2 || parts.size() == 3) {
        const auto channel = parseNumber(parts[0], 1, 16);
        const auto note = parseNumber(parts[1], 0, 127);
        const auto velocity = parts.size() == 3 ? parseNumber(parts[2], 1, 127) : SentNote().velocity;
        if (channel && note && velocity) {
            const auto index = static_cast<std::uint8_t>(*channel - 1);
            return SentNote{index, *note, *velocity};
        }
    }
    return Error{fmt::format(
        "{} is not a note; write CHANNEL:NOTE or CHANNEL:NOTE:VELOCITY, with a channel from 1 to 16, a note "
        "from 0 to 127 and a velocity from 1 to 127.",
        text
    )};
}

Result<Done> sendNote(const SentNote& note, double mostSeconds) {
    machine::SoundServers servers;
    const auto drivers = machine::makeMIDIDrivers(servers);
    const std::unique_ptr<MIDIOwnSource> source = makeSource(drivers);
    if (source == nullptr)
        return Error{"Neither a JACK server nor an ALSA sequencer is running to send the note."};
    if (!waitForListener(*source, mostSeconds))
        return Error{"No program received the note; connect one to the source, or start one first."};
    const auto status = [&note](unsigned kind) { return static_cast<std::uint8_t>(kind | note.channel); };
    const std::array<std::uint8_t, 3> on{status(0x90), note.note, note.velocity};
    const std::array<std::uint8_t, 3> off{status(0x80), note.note, 0};
    std::this_thread::sleep_for(settlingTime);
    for (const auto& message : {on, off}) {
        if (source->send(message) != platform::noErr)
            return Error{"The note was not sent; the JACK server may have stopped."};
        std::this_thread::sleep_for(settlingTime);
    }
    return Done{};
}

} // namespace orvane::cli
