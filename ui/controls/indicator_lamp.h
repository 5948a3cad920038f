#pragma once

#include <QWidget>

namespace orvane::ui {

/// A small round lamp, dim while it is off.
class IndicatorLamp final : public QWidget {
  public:
    /// `name`: for screen readers, which also receive the state.
    explicit IndicatorLamp(const QString& name);

    [[nodiscard]] bool isLit() const { return lit; }
    void setLit(bool isOn);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool lit = false;
};

} // namespace orvane::ui
