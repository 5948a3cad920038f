#pragma once

#include "platform/jack/jack_devices.h"
#include "platform/midi_services/midi_driver.h"

#include <span>
#include <vector>

namespace orvane::platform::jack {

/// Sees the sources in the MIDI output ports that a server lists, in its order. A port is known by its name,
/// which is what its program gave it. The bridges that bring ports of the ALSA sequencer to a server
/// (PipeWire's "Midi-Bridge", "a2j", and the classic server's own) number them as they are plugged in, but
/// tell the name of the ALSA client: their sources are known by that and the ALSA port, as the ALSA
/// sequencer's are.
std::vector<MIDIDriverSource> jackMIDISources(std::span<const JackPort> ports);

} // namespace orvane::platform::jack
