#pragma once

#include <QComboBox>
#include <QString>
#include <QStringList>

#include <functional>

namespace orvane::ui {

/// A menu of choices that shows the current one. The wheel scrolls the surrounding area and never changes the
/// choice; a click does not move the focus here. Both prevent accidental choices, which could interrupt the
/// sound.
class MenuPicker final : public QComboBox {
  public:
    /// `onChoose` receives the index of the user's choice. `name`: for screen readers.
    MenuPicker(const QString& name, int width, std::function<void(int)> onChoose);

    /// Offers `choices` and shows the one at `current`, or `placeholder` if `current` is -1.
    void present(const QStringList& choices, int current, const QString& placeholder = {});

    /// Shows a short text instead of the current choice; an empty one shows the choice again.
    void setSign(const QString& text);

    /// Opens the menu as wide as the longest choice.
    void showPopup() override;

  protected:
    /// Elides a text that is too long.
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    QStringList offered;
    QString sign;
};

} // namespace orvane::ui
