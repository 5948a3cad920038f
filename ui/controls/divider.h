#pragma once

class QWidget;

namespace orvane::ui {

/// A thin line across.
QWidget* makeHorizontalDivider();

/// A thin upright line.
QWidget* makeVerticalDivider(int height);

} // namespace orvane::ui
