#pragma once

#include <QWidget>

namespace orvane::ui {

/// The logo and the program's version. Main thread.
class AboutView final : public QWidget {
  public:
    explicit AboutView(QWidget* parent = nullptr);
};

} // namespace orvane::ui
