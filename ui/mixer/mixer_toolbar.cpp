#include "ui/mixer/mixer_toolbar.h"

#include "ui/controls/brand_wordmark.h"
#include "ui/controls/enter_key.h"
#include "ui/controls/text_label.h"
#include "ui/mixer/mixer_commands.h"
#include "ui/theme/theme.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>
#include <QVariant>

namespace orvane::ui {

namespace {

constexpr int iconWidth = 18;
constexpr int wordmarkSize = 18;
constexpr int padding = 12;
constexpr int verticalPadding = 4;

class Button final : public QToolButton {
  public:
    explicit Button(QAction* command) {
        setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        setIconSize({iconWidth, iconWidth});
        setFocusPolicy(Qt::TabFocus);
        setObjectName(QStringLiteral("command"));
        setFont(textFont(TextStyle::callout, QFont::Medium));
        setDefaultAction(command);
        setMinimumSize(sizeHint().width(), theme::touchTarget);
        connect(command, &QAction::changed, this, [this] { showWanted(); });
        showWanted();
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (!pressWithEnter(*this, *event) && event->key() != Qt::Key_Space)
            QToolButton::keyPressEvent(event);
    }

  private:
    void showWanted() {
        const QVariant isWanted = defaultAction()->property(MixerCommands::wantedProperty);
        if (property(MixerCommands::wantedProperty) == isWanted) return;
        setProperty(MixerCommands::wantedProperty, isWanted);
        // Style sheets notice no change of a property.
        style()->unpolish(this);
        style()->polish(this);
    }
};

} // namespace

MixerToolbar::MixerToolbar(const MixerCommands& commands, QWidget* parent)
    : QWidget(parent), wordmark(new BrandWordmark(wordmarkSize, this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(padding, verticalPadding, padding, verticalPadding);
    row->setSpacing(2);
    row->addStretch();
    for (QAction* command : commands.all()) {
        auto* const button = new Button(command);
        row->addWidget(button);
        // Keeps the row in place when the label changes.
        if (command == commands.startStop()) button->setFixedWidth(button->sizeHint().width() + padding);
    }
}

void MixerToolbar::resizeEvent(QResizeEvent*) {
    const QSize size = wordmark->sizeHint();
    wordmark->setGeometry(QRect(QPoint(padding, (height() - size.height()) / 2), size));
    wordmark->setVisible(width() >= layout()->minimumSize().width() + size.width() + padding);
}

void MixerToolbar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::panelBackground);
    painter.fillRect(0, height() - 1, width(), 1, theme::divider);
}

} // namespace orvane::ui
