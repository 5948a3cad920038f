#include "engine/session/mixer_document_codec.h"
#include "soak/operation.h"
#include "support/random_document.h"

#include <utility>

namespace orvane::soak {

namespace {

constexpr std::size_t mostScenes = 24;
constexpr std::size_t mostSessions = 4;

std::int64_t someScene(const Hands& h) {
    return h.index(h.state().snapshots.get().size());
}

session::MIDITrigger someNote(const Hands& h) {
    return {static_cast<std::int64_t>(h.choices.below(2)), static_cast<std::int64_t>(h.choices.below(8))};
}

/// Adds a scene, or removes one if the list is full.
template <class Add>
void addScene(Hands& h, Add add) {
    if (h.state().snapshots.get().size() < mostScenes) return add();
    h.engine().selectSnapshot(0);
    h.engine().deleteSnapshot();
}

void exportSession(Hands& h) {
    auto text = session::encodeMixerDocument(h.engine().makeDocumentData());
    if (!text) return;
    if (h.sessions.size() == mostSessions) h.sessions.erase(h.sessions.begin());
    h.sessions.push_back(std::move(text).value());
}

void importSession(Hands& h) {
    if (h.sessions.empty()) return;
    const auto document = session::decodeMixerDocument(h.choices.of(h.sessions));
    if (document) h.engine().applyDocument(document.value());
}

/// Imports anything that a file can hold, including extreme values.
void importAnything(Hands& h) {
    h.before = h.engine().makeDocumentData();
    h.engine().applyDocument(test::randomDocument(h.choices.below(1U << 16U)));
}

void sendNote(Hands& h, std::uint8_t velocity) {
    const session::MIDITrigger note = someNote(h);
    const std::uint8_t message[] = {
        static_cast<std::uint8_t>(0x90 | note.channel), static_cast<std::uint8_t>(note.note), velocity};
    const platform::MIDIPacket packets[] = {{message}, {std::span(message).first(2)}};
    if (h.stage.midi.read) h.stage.midi.read(packets);
}

/// Adds or removes a source.
void changeSources(Hands& h) {
    auto& sources = h.stage.midi.sources;
    if (sources.size() > 3)
        sources.erase(sources.begin());
    else
        sources.push_back({sources.empty() ? 1 : sources.back().endpoint + 1, 300, h.text()});
    if (h.stage.midi.notify) h.stage.midi.notify();
}

constexpr Operation operations[] = {
    {"new scene", 3, false,
     [](Hands& h) {
         addScene(h, [&h] {
             if (h.flag()) return h.engine().newSnapshot();
             h.engine().newSnapshot(h.text());
         });
     }},
    {"insert a scene", 2, false, [](Hands& h) { addScene(h, [&h] { h.engine().insertSnapshot(); }); }},
    {"store a scene", 2, false, [](Hands& h) { addScene(h, [&h] { h.engine().storeSnapshot(); }); }},
    {"copy a scene", 2, false, [](Hands& h) { addScene(h, [&h] { h.engine().copySnapshot(); }); }},
    {"delete a scene", 2, false, [](Hands& h) { h.engine().deleteSnapshot(); }},
    {"undo", 3, false, [](Hands& h) { h.engine().undoSnapshotEdit(); }},
    {"rename a scene", 1, false, [](Hands& h) { h.engine().renameSnapshot(someScene(h), h.text()); }},
    {"select the previous scene", 1, false, [](Hands& h) { h.engine().selectPreviousSnapshot(); }},
    {"select the next scene", 1, false, [](Hands& h) { h.engine().selectNextSnapshot(); }},
    {"select a scene", 2, false, [](Hands& h) { h.engine().selectSnapshot(someScene(h)); }},
    {"recall a scene", 6, false, [](Hands& h) { h.engine().recallSnapshot(someScene(h)); }},
    {"recall the scene", 2, false, [](Hands& h) { h.engine().recallCurrentSnapshot(); }},
    {"set recall safe", 1, false, [](Hands& h) { h.engine().setRecallSafe(h.flag(), h.index(3)); }},
    {"learn", 2, false, [](Hands& h) { h.engine().beginMIDILearn(); }},
    {"cancel the learning", 1, false, [](Hands& h) { h.engine().cancelMIDILearn(); }},
    {"handle a note", 3, false, [](Hands& h) { h.engine().handleMIDINote(someNote(h)); }},
    {"send a note", 4, false, [](Hands& h) { sendNote(h, static_cast<std::uint8_t>(h.choices.below(128))); }},
    {"change the MIDI sources", 1, false, changeSources},
    {"look for MIDI sources", 1, false, [](Hands& h) { h.engine().refreshMIDIDevices(); }},
    {"select a MIDI source", 1, false,
     [](Hands& h) {
         constexpr std::optional<std::int32_t> ids[] = {std::nullopt, std::nullopt, 100, 200, 300, -1};
         h.engine().selectMIDIDevice(h.choices.of(ids));
     }},
    {"export a session", 1, false, exportSession},
    {"import a session", 1, true, importSession},
    {"import anything", 1, true, importAnything},
};

} // namespace

std::span<const Operation> sceneOperations() {
    return operations;
}

} // namespace orvane::soak
