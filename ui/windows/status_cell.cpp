#include "ui/windows/status_cell.h"

#include "ui/theme/theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPalette>
#include <QVBoxLayout>

namespace orvane::ui {

namespace {

constexpr int captionSize = 8;

} // namespace

StatusCell::StatusCell(const QString& caption, QWidget* value, Qt::Alignment alignment) : title(new QLabel) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    title->setFont(systemFont(captionSize, QFont::Medium));
    title->setAlignment(alignment | Qt::AlignVCenter);
    setCaption(caption, theme::secondaryText);
    layout->addWidget(title);
    auto* const room = new QHBoxLayout;
    room->addStrut(valueHeight);
    // A value that is not centred fills the cell.
    room->addWidget(value, 0, alignment == Qt::AlignHCenter ? Qt::AlignCenter : Qt::Alignment());
    layout->addLayout(room);
}

void StatusCell::setCaption(const QString& text, const QColor& color) {
    title->setText(text);
    QPalette palette = title->palette();
    palette.setColor(QPalette::WindowText, color);
    title->setPalette(palette);
}

} // namespace orvane::ui
