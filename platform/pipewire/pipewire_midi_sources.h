#pragma once

#include "platform/midi_services/midi_driver.h"
#include "platform/pipewire/pipewire_objects.h"

#include <vector>

namespace orvane::platform::pipewire {

/// Derives the MIDI sources from what a server lists: every port that sends MIDI, in the order in which they
/// appeared. The address is the serial of the port. Ports of the node "Midi-Bridge", which brings in those of
/// the ALSA sequencer, are identified as the sequencer's are, others by their names.
std::vector<MIDIDriverSource> pipeWireMIDISources(const PipeWireObjects& objects);

} // namespace orvane::platform::pipewire
