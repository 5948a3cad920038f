#pragma once

#include <QComboBox>
#include <QString>
#include <QStringList>

#include <functional>

namespace orvane::ui {

/// A menu of choices that shows the current one. The wheel over it scrolls what it stands in and chooses
/// nothing, and a click does not leave the keys to it, because a choice may interrupt the sound.
class MenuPicker final : public QComboBox {
  public:
    /// `onChoose` gets the place of what the user chose. `name`: for screen readers.
    MenuPicker(const QString& name, int width, std::function<void(int)> onChoose);

    /// Offers `choices` and shows the one at `current`, or else `placeholder`.
    void present(const QStringList& choices, int current, const QString& placeholder = {});

    /// As wide as the longest choice.
    void showPopup() override;

  protected:
    /// Ends with "…" what is too long.
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    QStringList offered;
};

} // namespace orvane::ui
