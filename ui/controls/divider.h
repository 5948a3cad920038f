#pragma once

class QWidget;

namespace orvane::ui {

/// Makes a thin horizontal line.
QWidget* makeHorizontalDivider();

/// Makes a thin vertical line.
QWidget* makeVerticalDivider(int height);

} // namespace orvane::ui
