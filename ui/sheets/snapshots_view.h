#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/sheets/sheet.h"

#include <array>
#include <cstddef>
#include <functional>
#include <vector>

class QCheckBox;
class QLabel;
class QLayout;

namespace orvane::ui {

class ConsoleButton;
class MIDILearnNotice;
class SnapshotListView;

/// The panel for scenes: stores, recalls and edits them, and assigns MIDI notes. Also sets what recalls leave
/// unchanged. Unlike other sheets, it can stay open beside the mixer. Main thread.
class SnapshotsView final : public Sheet {
  public:
    /// `mixerEngine` must outlive the sheet.
    explicit SnapshotsView(engine::MixerEngine& mixerEngine, QWidget* parent = nullptr);

  private:
    /// The number of insert slots with a row.
    static constexpr std::size_t insertRows = 3;

    QLayout* makeHeader(QWidget* done);
    QLayout* makeNavigation();
    QLayout* makeMainButtons();
    QLayout* makeEditButtons();
    QLayout* makeInsertRow(std::size_t slot);
    void subscribe();
    /// Returns a button's action: commits a name that is being edited, then calls `operation`.
    std::function<void()> action(void (engine::MixerEngine::*operation)());
    void showPosition();
    void showLearning();
    void showRecallSafe();
    void toggleLearning();
    void toggleRecallSafe(std::size_t slot);
    void askForPresetName(std::size_t slot);

    engine::MixerEngine& engine;
    QLabel* const position;
    ConsoleButton* recall = nullptr;
    ConsoleButton* midi = nullptr;
    MIDILearnNotice* const learning;
    QLabel* const empty;
    SnapshotListView* const list;
    std::array<QCheckBox*, insertRows> recallSafe = {};
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
