#pragma once

#include <QObject>

namespace orvane::ui {

/// Shows the tool tips of every widget as plain text, line by line, that wraps. Filters the application's
/// events; main thread.
class ToolTips final : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
};

} // namespace orvane::ui
