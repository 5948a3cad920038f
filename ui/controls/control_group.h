#pragma once

#include <QWidget>

namespace orvane::ui {

/// A widget that assistive tools present as a group of controls, under its accessible name.
class ControlGroup : public QWidget {
  public:
    using QWidget::QWidget;
};

} // namespace orvane::ui
