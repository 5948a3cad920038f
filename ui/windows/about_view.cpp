#include "ui/windows/about_view.h"

#include "ui/controls/text_label.h"
#include "ui/theme/symbols.h"

#include <QCoreApplication>
#include <QVBoxLayout>

namespace orvane::ui {

namespace {

constexpr int side = 340;
constexpr int logoSize = 220;
const QString unknownVersion = QStringLiteral("1.0");

} // namespace

AboutView::AboutView(QWidget* parent) : QWidget(parent) {
    setWindowTitle(QStringLiteral("About ORVANE"));
    setFixedSize(side, side);
    auto* const lines = new QVBoxLayout(this);
    lines->setSpacing(20);
    lines->addStretch();
    auto* const picture = new QLabel;
    picture->setPixmap(logo(logoSize, devicePixelRatioF()));
    picture->setAccessibleName(QStringLiteral("ORVANE"));
    lines->addWidget(picture, 0, Qt::AlignCenter);
    const QString version = QCoreApplication::applicationVersion();
    lines->addWidget(
        makeText(
            QStringLiteral("v") + (version.isEmpty() ? unknownVersion : version), TextStyle::body,
            theme::secondaryText
        ),
        0, Qt::AlignCenter
    );
    lines->addStretch();
}

} // namespace orvane::ui
