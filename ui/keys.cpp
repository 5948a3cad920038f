#include "ui/keys.h"

namespace orvane::ui {

namespace {

using enum KeyCommand;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

KeyEntry key(std::optional<KeyCommand> command, const char* keys, const char* effect) {
    return {command, text(keys), text(effect)};
}

std::vector<KeyGroup> makeGroups() {
    return {
        {text("Session"),
         {key(load, "Ctrl+O", "Load a session."), key(save, "Ctrl+S", "Save the session to its file."),
          key(saveAs, "Ctrl+Shift+S", "Save the session to another file."),
          key(showSnapshots, "Ctrl+L", "Open the snapshots."),
          key(showDevices, "Ctrl+,", "Open Audio / MIDI Devices."),
          key(startStop, "Ctrl+Return", "Start or stop the audio."),
          key(previousScene, "F6", "Choose the scene before, to be recalled next."),
          key(nextScene, "F7", "Choose the scene after, to be recalled next."),
          key(recallScene, "F8", "Recall the next scene."),
          key(undoPaste, "Ctrl+Z", "Bring back what the last pasted plugin has replaced."),
          key(help, "F1; Ctrl+?", "Open the help."), key(quit, "Ctrl+Q", "Quit.")}},
        {text("Strips"),
         {key(leftStrip, "Alt+Left", "Go to the same control of the strip on the left."),
          key(rightStrip, "Alt+Right", "Go to the same control of the strip on the right."),
          key(leftFromControl, "Left", "The same, from a fader, a button, a slot or a menu."),
          key(rightFromControl, "Right", "The same, from a fader, a button, a slot or a menu."),
          key(mute, "M", "Mute or unmute the strip in focus."),
          key(bypass, "B", "Take the strip in focus out of the automix, or back into it."),
          key(muteAll, "Ctrl+M", "Mute every strip, or unmute the strips that this has muted; asks first."),
          key(presentation, "F2", "Change between Setup and Mix."),
          key(previousStrips, "PgUp", "Show the previous strips."),
          key(nextStrips, "PgDown", "Show the next strips.")}},
        {text("Controls"),
         {key({}, "Tab; Shift+Tab", "Go to the next or the previous control."),
          key({}, "Space", "Press a button, or open a menu."),
          key({}, "Return", "Press a button, or accept what is typed."),
          key(disarm, "Esc", "Disarm Copy or Paste."),
          key({}, "Esc", "Discard what is typed, or close a sheet or a question."),
          key({}, "Up; Down", "Move a fader or a slider by a step, or choose in a list."),
          key({}, "Shift+Up; Shift+Down", "Move a fader or a slider by a fine step."),
          key({}, "Left; Right", "Move a slider, or choose among buttons side by side."),
          key({}, "Home; End", "Move a fader or a slider to its end.")}},
        {text("Snapshots"),
         {key({}, "Return", "Recall the snapshot selected in the list."),
          key({}, "F2", "Rename the snapshot selected in the list.")}}};
}

} // namespace

const std::vector<KeyGroup>& keyGroups() {
    static const std::vector<KeyGroup> groups = makeGroups();
    return groups;
}

QList<QKeySequence> keysOf(KeyCommand command) {
    for (const KeyGroup& group : keyGroups())
        for (const KeyEntry& entry : group.entries)
            if (entry.command == command) return QKeySequence::listFromString(entry.keys);
    return {};
}

QString written(const KeyEntry& entry) {
    return QString(entry.keys).replace(QStringLiteral("; "), QStringLiteral(", "));
}

} // namespace orvane::ui
