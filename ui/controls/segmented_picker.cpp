#include "ui/controls/segmented_picker.h"

#include "ui/controls/own_keys.h"
#include "ui/theme/theme.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace orvane::ui {

namespace {

constexpr int textSize = 12;
constexpr double cornerRadius = 4.0;

/// One choice. Only the outer corners of the row are rounded.
class Segment final : public QAbstractButton {
  public:
    Segment(const QString& title, bool first, bool last, QWidget* parent)
        : QAbstractButton(parent), isFirst(first), isLast(last) {
        setText(title);
        setCheckable(true);
        setFont(systemFont(textSize, QFont::Medium));
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        setAttribute(Qt::WA_Hover);
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 12, fontMetrics().height() + 6};
    }

    void setNeutral() { checkedFill = theme::divider; }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        // The corners that must not be visible lie beyond the edges.
        const double beyond = cornerRadius + 1.0;
        const QRectF outline =
            QRectF(rect()).adjusted(isFirst ? 0.5 : -beyond, 0.5, isLast ? -0.5 : beyond, -0.5);
        QColor fill = isChecked() ? checkedFill : theme::raised;
        if (isEnabled() && underMouse()) fill = fill.lighter(115);
        painter.setBrush(fill);
        painter.setPen(
            parentWidget()->hasFocus() ? QPen(theme::accent, theme::focusWidth) : QPen(theme::divider, 1.0)
        );
        painter.drawRoundedRect(outline, cornerRadius, cornerRadius);
        if (!isFirst) painter.drawLine(QPointF(0.5, 1.0), QPointF(0.5, height() - 1.0));
        painter.setPen(isChecked() ? theme::primaryText : theme::secondaryText);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }

  private:
    const bool isFirst;
    const bool isLast;
    QColor checkedFill = theme::selection;
};

} // namespace

SegmentedPicker::SegmentedPicker(
    const QString& name, const QStringList& choices, std::function<void(int)> onChoose, QWidget* parent
)
    : ControlGroup(parent), changed(std::move(onChoose)) {
    setAccessibleName(name);
    setFocusPolicy(Qt::TabFocus);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    for (int choice = 0; choice < choices.size(); ++choice) {
        auto* const segment = new Segment(choices[choice], choice == 0, choice + 1 == choices.size(), this);
        segment->setAccessibleName(QStringLiteral("%1 %2").arg(name, choices[choice]));
        segment->setFocusPolicy(Qt::NoFocus);
        connect(segment, &QAbstractButton::clicked, this, [this, choice] { choose(choice); });
        segments.push_back(segment);
        row->addWidget(segment);
    }
}

void SegmentedPicker::setCurrent(int choice) {
    if (choice == chosen) return;
    chosen = choice;
    for (int i = 0; i < static_cast<int>(segments.size()); ++i)
        segment(i).setChecked(i == chosen);
    setAccessibleDescription(segment(chosen).text());
}

void SegmentedPicker::setNeutral(int choice) {
    static_cast<Segment&>(segment(choice)).setNeutral();
}

bool SegmentedPicker::event(QEvent* event) {
    return claimsArrow(*event) || QWidget::event(event);
}

void SegmentedPicker::keyPressEvent(QKeyEvent* event) {
    const int last = static_cast<int>(segments.size()) - 1;
    const bool isBack = event->key() == Qt::Key_Left;
    const int next = chosen + (isBack ? -1 : 1);
    if ((!isBack && event->key() != Qt::Key_Right) || next < 0 || next > last)
        return QWidget::keyPressEvent(event);
    choose(next);
}

void SegmentedPicker::choose(int choice) {
    const bool isNew = choice != chosen;
    setCurrent(choice);
    // A click on the current choice must not uncheck it.
    segment(choice).setChecked(true);
    if (isNew && changed) changed(choice);
}

} // namespace orvane::ui
