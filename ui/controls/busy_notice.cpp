#include "ui/controls/busy_notice.h"

#include <QProgressDialog>

namespace orvane::ui {

namespace {

constexpr int patienceInMs = 400;

} // namespace

BusyNotice::BusyNotice(QWidget* view, const QString& text)
    : dialog(std::make_unique<QProgressDialog>(text, QString(), 0, 0, view->window())) {
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setMinimumDuration(patienceInMs);
}

BusyNotice::~BusyNotice() = default;

} // namespace orvane::ui
