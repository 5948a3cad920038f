#pragma once

#include "platform/alsa/alsa_library.h"
#include "platform/midi_services/midi_driver.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::alsa {

// The ALSA sequencer as alsa-lib gives access to it. Only sources and the headers that only they include see
// this file.

using SequencerHandle = std::unique_ptr<snd_seq_t, Release<snd_seq_close>>;

/// A client of that name, which neither waits nor reports on standard error; null where the kernel has no
/// sequencer or we may not use it.
SequencerHandle openSequencer(const char* clientName);

/// The ports of other clients that anybody may listen to, by client and port number, without those that are
/// not meant for others: the system's and the bridges' own.
std::vector<MIDIDriverSource> listSources(snd_seq_t* sequencer);

/// Reads the address of a listed source.
std::optional<snd_seq_addr_t> parseAddress(std::string_view address);

/// Whether an event of the system's announce port may change what `listSources` gives.
bool announcesChange(const snd_seq_event_t& event);

} // namespace orvane::platform::alsa
