#pragma once

#include <QObject>

namespace orvane::ui {

/// Shows the tool tips of every widget as plain text that wraps and keeps its line breaks. An event filter of
/// the application; main thread.
class ToolTips final : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
};

} // namespace orvane::ui
