#pragma once

#include <QWidget>

namespace orvane::ui {

/// The mark at a strip's name: filled while the channel is open, hollow otherwise, with words for open, muted
/// and bypassed where it is high enough. Main thread.
class StripMark final : public QWidget {
  public:
    struct State {
        bool isOpen = false;
        bool isMuted = false;
        bool isBypassed = false;

        bool operator==(const State&) const = default;
    };

    explicit StripMark(QWidget* parent = nullptr);

    [[nodiscard]] const State& state() const { return shown; }
    void setState(const State& state);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    State shown;
};

} // namespace orvane::ui
