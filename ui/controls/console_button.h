#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QString>

#include <functional>

namespace orvane::ui {

/// The flat push button used throughout the interface: a title on a rounded rectangle, highlighted while it
/// is active. Space and Enter press it while it has the focus.
class ConsoleButton final : public QAbstractButton {
  public:
    /// `onPress` may be empty.
    explicit ConsoleButton(
        const QString& title, std::function<void()> onPress = {}, QWidget* parent = nullptr
    );

    [[nodiscard]] bool isActive() const { return isChecked(); }
    /// Makes the button one that can be on or off.
    void setActive(bool isOn);
    /// The highlight colour of an active button; the theme's accent by default.
    void setActiveColor(const QColor& color) { activeColor = color; }

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    /// A press changes nothing by itself; the owner of the state does.
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QColor activeColor;
};

} // namespace orvane::ui
