#include "ui/windows/scene_view.h"

#include "ui/mixer/mixer_commands.h"
#include "ui/theme/theme.h"
#include "ui/windows/status_cell.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace orvane::ui {

namespace {

constexpr int nameSize = 13;
constexpr int shortestName = 92;
constexpr int usualName = 130;
constexpr int longestName = 220;
constexpr int spacing = 6;
constexpr QSize stepButtonSize(32, 32);
constexpr QSize recallButtonSize(72, 32);
constexpr int iconSize = 16;

const QString noScene = QStringLiteral("—");
const QString playedCaption = QStringLiteral("SCENE");
const QString editedCaption = QStringLiteral("SCENE · EDITED");

QToolButton* makeButton(QAction* command, const QSize& size, Qt::ToolButtonStyle style) {
    auto* const button = new QToolButton;
    button->setObjectName(QStringLiteral("scene"));
    button->setToolButtonStyle(style);
    button->setIconSize({iconSize, iconSize});
    button->setFixedSize(size);
    button->setFocusPolicy(Qt::TabFocus);
    button->setDefaultAction(command);
    button->setAccessibleName(command->text());
    return button;
}

} // namespace

/// The number and name of a scene, shortened to the room there is.
class SceneName final : public QLabel {
  public:
    SceneName() {
        setFont(systemFont(nameSize, QFont::DemiBold));
        setTextFormat(Qt::PlainText);
        setMaximumWidth(longestName);
    }

    [[nodiscard]] QSize sizeHint() const override {
        const int width = fontMetrics().horizontalAdvance(text()) + 1;
        return {std::clamp(width, usualName, longestName), StatusCell::valueHeight};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return {shortestName, StatusCell::valueHeight}; }

    /// Shows the scene at `index`, or a dash. Assistive tools read `role` before it.
    void show(
        const QString& role, const std::vector<session::Snapshot>& scenes, std::optional<std::int64_t> index
    ) {
        setText(
            index ? QStringLiteral("%1 %2")
                        .arg(*index + 1)
                        .arg(QString::fromStdString(scenes[static_cast<std::size_t>(*index)].name))
                  : noScene
        );
        updateGeometry();
        setToolTip(index ? text() : QString());
        setAccessibleName(QStringLiteral("%1: %2").arg(role, text()));
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.drawText(
            rect(), Qt::AlignLeft | Qt::AlignVCenter,
            fontMetrics().elidedText(text(), Qt::ElideRight, width())
        );
    }
};

SceneView::SceneView(engine::MixerEngine& mixerEngine, const MixerCommands& commands)
    : engine(mixerEngine),
      played(new SceneName),
      next(new SceneName),
      playedCell(new StatusCell(playedCaption, played, Qt::AlignLeft)) {
    const auto& [earlier, later, recall] = commands.scenes();
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(playedCell, 1);
    row->addWidget(new StatusCell(QStringLiteral("NEXT"), next, Qt::AlignLeft), 1);
    row->addWidget(makeButton(earlier, stepButtonSize, Qt::ToolButtonIconOnly));
    row->addWidget(makeButton(later, stepButtonSize, Qt::ToolButtonIconOnly));
    row->addWidget(makeButton(recall, recallButtonSize, Qt::ToolButtonTextOnly));
    subscribe();
    showScenes();
}

void SceneView::subscribe() {
    const engine::EngineState& state = engine.state();
    const auto follow = [this](const auto& value, void (SceneView::*display)()) {
        subscriptions.push_back(value.subscribe([this, display](const auto&) { (this->*display)(); }));
    };
    follow(state.snapshots, &SceneView::showScenes);
    follow(state.playedSnapshotID, &SceneView::showScenes);
    follow(state.nextSnapshotIndex, &SceneView::showScenes);
    follow(state.channelStrips, &SceneView::showEdits);
    follow(state.master, &SceneView::showEdits);
}

void SceneView::showScenes() {
    const std::vector<session::Snapshot>& scenes = engine.state().snapshots.get();
    const session::Snapshot* const scene = engine.playedSnapshot();
    played->show(
        QStringLiteral("Scene"), scenes,
        scene != nullptr ? std::optional(scene - scenes.data()) : std::nullopt
    );
    const std::optional<std::int64_t> index = engine.state().nextSnapshotIndex.get();
    const bool isThere = index && *index < static_cast<std::int64_t>(scenes.size());
    next->show(QStringLiteral("Next scene"), scenes, isThere ? index : std::nullopt);
    showEdits();
}

void SceneView::showEdits() {
    const bool isNow = engine.hasLeftPlayedSnapshot();
    if (std::exchange(isEdited, isNow) == isNow) return;
    playedCell->setCaption(
        isNow ? editedCaption : playedCaption, isNow ? theme::orange : theme::secondaryText
    );
}

} // namespace orvane::ui
