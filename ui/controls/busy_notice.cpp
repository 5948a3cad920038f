#include "ui/controls/busy_notice.h"

#include "ui/controls/text_label.h"

#include <QTimer>

#include <chrono>

namespace orvane::ui {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 400ms;
constexpr int distance = 12;

} // namespace

BusyNotice::BusyNotice(QWidget* view, const QString& text) : QLabel(text, view->window()) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFont(textFont(TextStyle::callout, QFont::DemiBold));
    setStyleSheet(QStringLiteral("background: %1; color: %2; border: 1px solid %3; padding: 6px 12px;")
                      .arg(theme::panelBackground.name(), theme::primaryText.name(), theme::accent.name()));
    hide();
    QTimer::singleShot(patience, this, [this] { appear(); });
}

void BusyNotice::appear() {
    adjustSize();
    move((window()->width() - width()) / 2, window()->height() - height() - distance);
    raise();
    show();
}

} // namespace orvane::ui
