#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QMouseEvent;

namespace orvane::ui {

/// Lets fingers hit small controls: a press beside the controls of a view, but close to the track of a slider
/// or a fader, or just above or below a low button, goes to that control. Main thread.
class NearTouch final : public QObject {
  public:
    /// Serves the controls within `view`, which owns it.
    explicit NearTouch(QWidget& view);

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    void hold(QPoint place);
    bool pass(const QMouseEvent& event);

    QWidget& view;
    /// The control that takes the current press.
    QPointer<QWidget> held;
    /// From the press to the closest place of the control.
    QPoint offset;
};

} // namespace orvane::ui
