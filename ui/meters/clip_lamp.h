#pragma once

#include <QAbstractButton>

#include <functional>

namespace orvane::ui {

/// A lamp with the word CLIP: red once a signal has reached full scale, until it is reset by a click. Main
/// thread.
class ClipLamp final : public QAbstractButton {
  public:
    /// `name`: for screen readers, which also receive the state.
    ClipLamp(const QString& name, std::function<void()> onReset, QWidget* parent = nullptr);

    [[nodiscard]] bool isLit() const { return lit; }
    void setLit(bool isOn);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool lit = false;
};

} // namespace orvane::ui
