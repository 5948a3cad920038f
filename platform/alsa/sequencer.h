#pragma once

#include "platform/alsa/alsa_library.h"
#include "platform/midi_services/midi_driver.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::alsa {

// The ALSA sequencer through alsa-lib. Include this file only in sources and in headers that only sources
// include.

using SequencerHandle = std::unique_ptr<snd_seq_t, Release<snd_seq_close>>;

/// Opens a non-blocking client of this name, without messages on standard error; null if the kernel has no
/// sequencer or denies access.
SequencerHandle openSequencer(const char* clientName);

/// The public ports of other clients, by client and port number, except the system's and the bridges' own.
std::vector<MIDIDriverSource> listSources(snd_seq_t* sequencer);

/// Reads the address of a listed source.
std::optional<snd_seq_addr_t> parseAddress(std::string_view address);

/// Whether an event of the system's announce port may change the result of `listSources`.
bool announcesChange(const snd_seq_event_t& event);

} // namespace orvane::platform::alsa
