#pragma once

#include <QWidget>

namespace orvane::ui {

class MixerCommands;

/// The session-wide commands along the top of the mixer. Its buttons are pressed with Enter, not with the
/// space bar, which starts and stops things elsewhere and must not do so here by accident. Main thread.
class MixerToolbar final : public QWidget {
  public:
    /// `commands` outlive the view.
    explicit MixerToolbar(const MixerCommands& commands, QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    /// Stands beside the buttons where there is room for it.
    QWidget* const wordmark;
};

} // namespace orvane::ui
