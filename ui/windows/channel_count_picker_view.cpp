#include "ui/windows/channel_count_picker_view.h"

#include "ui/controls/brand_wordmark.h"
#include "ui/controls/console_button.h"
#include "ui/controls/enter_key.h"
#include "ui/controls/text_label.h"
#include "ui/theme/theme.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace orvane::ui {

namespace {

constexpr int panelWidth = 420;
constexpr int columns = 4;
constexpr int columnSpacing = 12;
constexpr QSize buttonSize(84, 56);
constexpr double cornerRadius = 8.0;
constexpr double outlineWidth = 2.0;
constexpr int numberSize = 20;
constexpr int wordmarkSize = 34;

const QString firstRunTitle = QStringLiteral("How many channels?");
const QString firstRunText = QStringLiteral(
    "Pick the smallest size that covers this show. Idle channel strips still cost a little CPU just by "
    "existing, same as a hardware automixer only comes in fixed sizes -- you're not stuck, you can change "
    "this later from the toolbar."
);
const QString reconfigureTitle = QStringLiteral("Change Channel Count");
const QString reconfigureText = QStringLiteral(
    "Switching sizes starts a fresh session -- save/export first if you want to keep this one's routing and "
    "settings."
);

/// One choice: its number above the word "channels".
class SizeButton final : public QAbstractButton {
  public:
    explicit SizeButton(int channelCount) {
        setText(QString::number(channelCount));
        setAccessibleName(QStringLiteral("%1 channels").arg(channelCount));
        setFixedSize(buttonSize);
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool isPointedAt = underMouse() || hasFocus();
        painter.setBrush(isDown() ? theme::raised.lighter(140) : theme::raised);
        painter.setPen(QPen(isPointedAt ? theme::accent : theme::divider, outlineWidth));
        const double inset = outlineWidth / 2.0;
        painter.drawRoundedRect(
            QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius
        );
        painter.setPen(theme::primaryText);
        painter.setFont(monospacedFont(numberSize, QFont::Bold));
        painter.drawText(rect().adjusted(0, 7, 0, -22), Qt::AlignCenter, text());
        painter.setPen(theme::secondaryText);
        painter.setFont(textFont(TextStyle::caption));
        painter.drawText(rect().adjusted(0, 32, 0, -6), Qt::AlignCenter, QStringLiteral("channels"));
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (!pressWithEnter(*this, *event)) QAbstractButton::keyPressEvent(event);
    }
};

} // namespace

ChannelCountPickerView::ChannelCountPickerView(const Form& form, QWidget* parent) : QWidget(parent) {
    auto* const panel = new QWidget;
    panel->setFixedWidth(panelWidth);
    auto* const lines = new QVBoxLayout(panel);
    lines->setSpacing(16);
    lines->addWidget(new BrandWordmark(wordmarkSize), 0, Qt::AlignHCenter);
    lines->addSpacing(12);
    QLabel* const title = makeText(
        form.isReconfiguring ? reconfigureTitle : firstRunTitle, TextStyle::largeTitle, theme::primaryText,
        QFont::Bold
    );
    title->setAlignment(Qt::AlignCenter);
    lines->addWidget(title);
    QLabel* const explanation = makeText(
        form.isReconfiguring ? reconfigureText : firstRunText, TextStyle::body, theme::secondaryText
    );
    explanation->setAlignment(Qt::AlignHCenter);
    lines->addWidget(explanation);

    auto* const grid = new QGridLayout;
    grid->setSpacing(columnSpacing);
    // The arrow keys move within a button group.
    auto* const group = new QButtonGroup(this);
    group->setExclusive(false);
    for (const int size : offeredChannelCounts) {
        auto* const button = new SizeButton(size);
        connect(button, &QAbstractButton::clicked, this, [onSelect = form.onSelect, size] {
            onSelect(size);
        });
        const int index = static_cast<int>(group->buttons().size());
        group->addButton(button);
        grid->addWidget(button, index / columns, index % columns);
    }
    auto* const centred = new QHBoxLayout;
    centred->addStretch();
    centred->addLayout(grid);
    centred->addStretch();
    lines->addLayout(centred);

    if (form.onCancel) {
        auto* const cancel = new ConsoleButton(QStringLiteral("Cancel"), form.onCancel);
        cancel->setFixedWidth(buttonSize.width());
        lines->addWidget(cancel, 0, Qt::AlignHCenter);
    }
    auto* const whole = new QVBoxLayout(this);
    whole->addWidget(panel, 0, Qt::AlignCenter);
    setFocusProxy(group->buttons().first());
}

} // namespace orvane::ui
