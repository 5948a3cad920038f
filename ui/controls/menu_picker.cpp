#include "ui/controls/menu_picker.h"

#include <QWheelEvent>

#include <utility>

namespace orvane::ui {

MenuPicker::MenuPicker(const QString& name, int width, std::function<void(int)> onChoose) {
    setAccessibleName(name);
    setFixedWidth(width);
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QComboBox::activated, this, std::move(onChoose));
}

void MenuPicker::present(const QStringList& choices, int current, const QString& placeholder) {
    if (choices != offered) {
        offered = choices;
        clear();
        addItems(choices);
    }
    setPlaceholderText(placeholder);
    setCurrentIndex(current);
}

void MenuPicker::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace orvane::ui
