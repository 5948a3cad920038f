#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace orvane::ui {

/// The commands that the keyboard gives.
enum class KeyCommand {
    load,
    save,
    saveAs,
    showSnapshots,
    showDevices,
    startStop,
    previousScene,
    nextScene,
    recallScene,
    help,
    quit,
    presentation,
    previousStrips,
    nextStrips,
    leftStrip,
    rightStrip,
    leftFromControl,
    rightFromControl,
    mute,
    bypass,
    muteAll,
    undoPaste,
    disarm
};

/// One line of the table of keys. A plain value.
struct KeyEntry {
    /// Absent if the controls themselves take the keys.
    std::optional<KeyCommand> command;
    /// The keys by their names, separated by "; ".
    QString keys;
    /// What they do, as a sentence.
    QString effect;
};

/// Keys for one purpose. A plain value.
struct KeyGroup {
    QString title;
    std::vector<KeyEntry> entries;
};

/// Returns the table of all keys, from which shortcuts, menus and the help are made. Main thread.
const std::vector<KeyGroup>& keyGroups();

/// Returns the keys of a command. Main thread.
QList<QKeySequence> keysOf(KeyCommand command);

/// Returns keys as the help and the manual write them, for example "F1, Ctrl+?".
QString written(const KeyEntry& entry);

} // namespace orvane::ui
