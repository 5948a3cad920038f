#include "ui/editors/plugin_editor_view.h"

#include "ui/controls/near_touch.h"
#include "ui/controls/screen_room.h"
#include "ui/controls/scroll_guard.h"
#include "ui/controls/text_label.h"
#include "ui/editors/parameter_row.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

namespace orvane::ui {

namespace {

/// The interval of the meters.
constexpr auto refreshInterval = std::chrono::milliseconds(33);
constexpr int padding = 16;
constexpr int lineSpacing = 4;
constexpr int groupSpacing = 10;
constexpr int highest = 640;

} // namespace

PluginEditorView::PluginEditorView(std::shared_ptr<platform::AUViewController> editor, QWidget* parent)
    : QWidget(parent), controller(std::move(editor)), area(new QScrollArea) {
    auto* const content = new QWidget;
    auto* const lines = new QVBoxLayout(content);
    lines->setContentsMargins(padding, padding, padding, padding);
    lines->setSpacing(lineSpacing);
    addRows(*lines);
    lines->addStretch();
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    new ScrollGuard(*area);
    new NearTouch(*content);
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(area);
    setMinimumWidth(content->minimumSizeHint().width() + area->verticalScrollBar()->sizeHint().width());
    connect(&refreshing, &QTimer::timeout, this, [this] { refresh(); });
}

void PluginEditorView::addRows(QVBoxLayout& lines) {
    std::string group;
    for (platform::AUParameter* parameter : controller->unit().parameters()) {
        const platform::AUParameterInfo& info = parameter->info();
        if (info.isHidden) continue;
        if (info.group != group) {
            group = info.group;
            if (!rows.empty()) lines.addSpacing(groupSpacing);
            if (!group.empty())
                lines.addWidget(
                    makeText(QString::fromStdString(group), TextStyle::body, theme::primaryText, QFont::Bold)
                );
        }
        rows.push_back(new ParameterRow(*parameter));
        lines.addWidget(rows.back());
    }
    if (rows.empty())
        lines.addWidget(makeText(
            QStringLiteral("This plugin has nothing to set."), TextStyle::callout, theme::secondaryText
        ));
}

QSize PluginEditorView::sizeHint() const {
    return {
        minimumWidth(), std::min({area->widget()->sizeHint().height(), highest, screenRoom(*this).height()})};
}

void PluginEditorView::showEvent(QShowEvent*) {
    refresh();
    refreshing.start(refreshInterval);
}

void PluginEditorView::hideEvent(QHideEvent*) {
    refreshing.stop();
}

void PluginEditorView::refresh() {
    for (ParameterRow* row : rows)
        row->refresh();
}

} // namespace orvane::ui
