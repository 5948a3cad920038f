#include "engine/midi_input.h"

#include "platform/base/memory_shortage.h"

#include <algorithm>
#include <utility>

namespace orvane::engine {

MIDIInput::MIDIInput(const Services& services, EngineState& published, NotesHandler handler)
    : state(published), handleNotes(std::move(handler)), manager(services.midiServices) {
    const platform::MainThread::Poster post(services.mainThread, isAlive);
    manager.onNoteOn([this, post](const midi::NoteMessage& note) {
        // Without memory for it a note is lost; the driver's thread takes the next one.
        platform::runUnlessOutOfMemory([&] {
            const std::scoped_lock guard(waiting);
            if (waitingNotes.empty()) post([this] { handleWaitingNotes(); });
            waitingNotes.push_back(note);
        });
    });
    manager.onSourcesChanged([this, post] {
        platform::runUnlessOutOfMemory([&] { post([this] { refreshDevices(); }); });
    });
}

void MIDIInput::start() {
    manager.start();
    refreshDevices();
}

void MIDIInput::handleWaitingNotes() {
    std::vector<midi::NoteMessage> notes;
    {
        const std::scoped_lock guard(waiting);
        notes.swap(waitingNotes);
    }
    handleNotes(notes);
}

void MIDIInput::refreshDevices() {
    state.availableMIDIDevices.set(manager.availableSources());
}

void MIDIInput::select(std::optional<std::int32_t> sourceID) {
    const std::vector<midi::MIDIDeviceInfo>& sources = state.availableMIDIDevices.get();
    const auto selected = std::ranges::find(sources, sourceID, &midi::MIDIDeviceInfo::id);
    nameOfSelected = selected == sources.end() ? std::string() : selected->name;
    state.selectedMIDIDeviceID.set(sourceID);
    manager.setSelectedSourceID(sourceID);
}

} // namespace orvane::engine
