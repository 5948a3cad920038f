#include "ui/controls/divider.h"

#include "ui/theme/theme.h"

#include <QPalette>
#include <QWidget>

namespace orvane::ui {

namespace {

QWidget* makeDivider() {
    auto* const divider = new QWidget;
    divider->setAutoFillBackground(true);
    divider->setPalette(QPalette(theme::divider));
    return divider;
}

} // namespace

QWidget* makeHorizontalDivider() {
    QWidget* const divider = makeDivider();
    divider->setFixedHeight(1);
    return divider;
}

QWidget* makeVerticalDivider(int height) {
    QWidget* const divider = makeDivider();
    divider->setFixedSize(1, height);
    return divider;
}

} // namespace orvane::ui
