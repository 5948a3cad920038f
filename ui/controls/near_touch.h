#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QMouseEvent;

namespace orvane::ui {

/// Lets fingers hit thin sliders and faders: a press beside the controls of a view, but close to the track of
/// a slider or a fader, moves that one. Main thread.
class NearTouch final : public QObject {
  public:
    /// Serves the sliders and faders within `view`, which owns it.
    explicit NearTouch(QWidget& view);

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    [[nodiscard]] QWidget* sliderNear(QPoint place) const;
    bool pass(const QMouseEvent& event);

    QWidget& view;
    /// The slider that the current press moves.
    QPointer<QWidget> held;
};

} // namespace orvane::ui
