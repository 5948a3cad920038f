#include "ui/theme/tool_tips.h"

#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

namespace orvane::ui {

bool ToolTips::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::ToolTip || !receiver->isWidgetType()) return false;
    auto* const widget = static_cast<QWidget*>(receiver);
    if (widget->toolTip().isEmpty()) return false;
    // Only rich text wraps.
    QString text = QStringLiteral("<p>%1</p>").arg(widget->toolTip().toHtmlEscaped());
    text.replace(u'\n', QStringLiteral("<br>"));
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, widget);
    return true;
}

} // namespace orvane::ui
