#pragma once

#include "platform/alsa/event_bytes.h"
#include "platform/alsa/sequencer.h"
#include "platform/midi_services/midi_driver.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace orvane::platform::alsa {

/// A port that other programs can connect to, of a client of its own.
class OwnSource final : public MIDIOwnSource {
  public:
    /// See MIDIDriver::createSource.
    static Result<std::unique_ptr<MIDIOwnSource>, OSStatus>
    create(const char* clientName, std::string_view name);

    bool isConnected() override;
    OSStatus send(std::span<const std::uint8_t> message) override;

  private:
    OwnSource(SequencerHandle client, int ownPort) : sequencer(std::move(client)), port(ownPort) {}

    SequencerHandle sequencer;
    int port;
    EventBytes translator;
};

} // namespace orvane::platform::alsa
