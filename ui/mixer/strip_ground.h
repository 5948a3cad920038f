#pragma once

#include <QScroller>
#include <QWidget>

class QAbstractScrollArea;

namespace orvane::ui {

/// The ground on which the strips stand: frames the strip in focus, and scrolls when it is dragged between
/// the controls, with the mouse or a finger. Main thread.
class StripGround final : public QWidget {
  public:
    /// `scrolled`: the area to scroll, which must outlive the ground.
    explicit StripGround(QAbstractScrollArea& scrolled);

    /// Frames a strip at this place; none if empty.
    void mark(const QRect& strip);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void drag(QScroller::Input input, const QMouseEvent& event);

    QAbstractScrollArea& area;
    QRect marked;
};

} // namespace orvane::ui
