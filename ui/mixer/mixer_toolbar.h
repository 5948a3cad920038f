#pragma once

#include <QWidget>

namespace orvane::ui {

class MixerCommands;

/// The commands along the top of the mixer. Enter presses the buttons; the space bar does not, because users
/// expect it to start and stop playback and could press it by accident. Main thread.
class MixerToolbar final : public QWidget {
  public:
    /// `commands` must outlive the view.
    explicit MixerToolbar(const MixerCommands& commands, QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    /// Visible if there is room beside the buttons.
    QWidget* const wordmark;
};

} // namespace orvane::ui
