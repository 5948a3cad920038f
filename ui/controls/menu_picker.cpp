#include "ui/controls/menu_picker.h"

#include "ui/controls/sign.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QStyledItemDelegate>
#include <QWheelEvent>

#include <utility>

namespace orvane::ui {

namespace {

/// The margin of a label on both sides of its text.
constexpr int labelInset = 2;

} // namespace

MenuPicker::MenuPicker(const QString& name, int width, std::function<void(int)> onChoose) {
    setAccessibleName(name);
    setFixedWidth(width);
    setFocusPolicy(Qt::TabFocus);
    // Unlike the menu's own, it respects the height of rows in the style sheet.
    setItemDelegate(new QStyledItemDelegate(this));
    connect(this, &QComboBox::currentIndexChanged, this, [this] {
        QAccessibleEvent change(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&change);
    });
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

void MenuPicker::setSign(const QString& text) {
    if (text == sign) return;
    sign = text;
    setAttribute(Qt::WA_Hover);
    update();
}

void MenuPicker::showPopup() {
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + view()->verticalScrollBar()->sizeHint().width());
    QComboBox::showPopup();
}

void MenuPicker::paintEvent(QPaintEvent*) {
    // The first choice is the absence of one.
    if (!sign.isEmpty()) return paintSign(*this, sign, currentIndex() > 0);
    QStylePainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (currentIndex() < 0) option.currentText = placeholderText();
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const QRect room =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText =
        fontMetrics().elidedText(option.currentText, Qt::ElideRight, room.width() - labelInset);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void MenuPicker::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace orvane::ui
