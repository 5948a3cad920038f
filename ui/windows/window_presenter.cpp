#include "ui/windows/window_presenter.h"

#include <QAction>

namespace orvane::ui {

void bringToFront(QWidget& window) {
    if (window.actions().isEmpty()) {
        auto* const close = new QAction(QStringLiteral("Close"), &window);
        close->setShortcuts({QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)});
        QObject::connect(close, &QAction::triggered, &window, &QWidget::close);
        window.addAction(close);
        window.setAttribute(Qt::WA_QuitOnClose, false);
    }
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace orvane::ui
