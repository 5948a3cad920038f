#include "engine/midi_input.h"

#include <utility>

namespace orvane::engine {

MIDIInput::MIDIInput(const Services& services, EngineState& published, NoteHandler handler)
    : mainThread(services.mainThread),
      state(published),
      handleNote(std::move(handler)),
      manager(services.midiServices) {
    const auto onMainThread = [&thread = mainThread, alive = std::weak_ptr(isAlive)](auto task) {
        thread.post([alive, task = std::move(task)] {
            if (!alive.expired()) task();
        });
    };
    manager.onNoteOn([this, onMainThread](const midi::NoteMessage& note) {
        onMainThread([this, note] { handleNote(note); });
    });
    manager.onSourcesChanged([this, onMainThread] { onMainThread([this] { refreshDevices(); }); });
}

void MIDIInput::start() {
    manager.start();
    refreshDevices();
}

void MIDIInput::refreshDevices() {
    state.availableMIDIDevices.set(manager.availableSources());
}

void MIDIInput::select(std::optional<std::int32_t> sourceID) {
    state.selectedMIDIDeviceID.set(sourceID);
    manager.setSelectedSourceID(sourceID);
}

} // namespace orvane::engine
