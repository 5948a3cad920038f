#pragma once

#include "platform/jack/jack_devices.h"
#include "platform/midi_services/midi_driver.h"

#include <span>
#include <vector>

namespace orvane::platform::jack {

/// Derives the MIDI sources from the output ports that a server lists, in its order. A port is identified by
/// its name, which its program chose. The bridges that bring ports of the ALSA sequencer to a server
/// (PipeWire's "Midi-Bridge", "a2j", and the classic server's own) number them in the order of plugging in,
/// but state the name of the ALSA client: their sources are identified by that name and the ALSA port, as the
/// ALSA sequencer's are.
std::vector<MIDIDriverSource> jackMIDISources(std::span<const JackPort> ports);

} // namespace orvane::platform::jack
