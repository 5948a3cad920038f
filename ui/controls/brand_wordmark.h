#pragma once

#include <QWidget>

namespace orvane::ui {

/// The product name, drawn in the colours of the theme.
class BrandWordmark final : public QWidget {
  public:
    /// `fontSize` in points.
    explicit BrandWordmark(int fontSize, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace orvane::ui
