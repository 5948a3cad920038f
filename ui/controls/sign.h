#pragma once

#include <QAbstractButton>
#include <QString>

#include <functional>

namespace orvane::ui {

/// Paints a short text on the whole of a control, dimmed unless it is `isSet`. Main thread.
void paintSign(QWidget& control, const QString& text, bool isSet);

/// A short text that stands for a setting and leads to it. Space and Enter press it while it has the focus.
/// Main thread.
class Sign final : public QAbstractButton {
  public:
    /// `name`: for screen readers.
    Sign(const QString& name, std::function<void()> onPress, QWidget* parent = nullptr);

    /// `isSet`: whether the setting differs from its default. `help`: its value in words.
    void show(const QString& text, bool isSet, const QString& help);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    bool isSet = false;
};

} // namespace orvane::ui
