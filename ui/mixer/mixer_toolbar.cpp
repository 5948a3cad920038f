#include "ui/mixer/mixer_toolbar.h"

#include "ui/controls/brand_wordmark.h"
#include "ui/controls/text_label.h"
#include "ui/theme/symbols.h"
#include "ui/theme/theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QToolButton>

#include <utility>

namespace orvane::ui {

namespace {

constexpr int iconWidth = 18;
constexpr int wordmarkSize = 18;
constexpr int padding = 12;
constexpr int verticalPadding = 6;

class Button final : public QToolButton {
  public:
    Button(const QString& icon, const QString& label, const QString& help) {
        setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        setIconSize({iconWidth, iconWidth});
        setFocusPolicy(Qt::TabFocus);
        setObjectName(QStringLiteral("command"));
        setFont(textFont(TextStyle::callout, QFont::Medium));
        present(icon, label);
        setToolTip(help);
        setMinimumWidth(sizeHint().width());
    }

    void present(const QString& icon, const QString& label) {
        setIcon(symbol(icon));
        setText(label);
        setAccessibleName(label);
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
        if (event->key() != Qt::Key_Space) QToolButton::keyPressEvent(event);
    }
};

} // namespace

MixerToolbar::MixerToolbar(engine::MixerEngine& mixerEngine, Actions actions, QWidget* parent)
    : QWidget(parent), engine(mixerEngine), wordmark(new BrandWordmark(wordmarkSize, this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(padding, verticalPadding, padding, verticalPadding);
    row->setSpacing(2);
    row->addStretch();
    const auto add = [this, row](const char* icon, const QString& label, const QString& help, auto action) {
        auto* const button = new Button(QString::fromLatin1(icon), label, help);
        connect(button, &QToolButton::clicked, this, std::move(action));
        row->addWidget(button);
        return button;
    };
    oneToOne =
        add("one-to-one", QStringLiteral("1:1"),
            QStringLiteral("Reset every channel to a straight 1:1 patch (channel N -> input N -> output N)."),
            [this] { engine.resetRoutingOneToOne(); });
    add("clear-outputs", QStringLiteral("Clear Outputs"),
        QStringLiteral("Set every channel's output to None, leaving inputs untouched -- a quick way to kill "
                       "all outputs, e.g. if you suspect a feedback loop."),
        std::move(actions.clearOutputs));
    add("snapshots", QStringLiteral("Snapshots"),
        QStringLiteral("Store/recall full mixer states (scenes), with MIDI trigger + Learn."),
        std::move(actions.showSnapshots));
    add("load", QStringLiteral("Load"), QStringLiteral("Load a previously saved settings file."),
        std::move(actions.load));
    add("save", QStringLiteral("Save"),
        QStringLiteral("Save/export the current session (routing, names, settings, and snapshots) as an "
                       ".orvane file."),
        std::move(actions.save));
    add("devices", QStringLiteral("Audio / MIDI Devices"),
        QStringLiteral("Choose the Core Audio device (soundcard) and MIDI input source, and set the buffer "
                       "size."),
        std::move(actions.showDeviceSettings));
    add("channels", QStringLiteral("%1 Channels").arg(engine.state().channelStrips.get().size()),
        QStringLiteral("Change how many channels this session has. Smaller sessions use less CPU -- see the "
                       "channel-count picker's explanation."),
        std::move(actions.changeChannelCount));
    startStop = add("start", QStringLiteral("Start"), {}, [this] {
        if (engine.state().isRunning.get())
            engine.stop();
        else
            engine.start();
    });
    // The row stays as it is when the label changes.
    startStop->setFixedWidth(startStop->sizeHint().width() + padding);

    subscriptions.push_back(engine.state().selectedDevice.subscribe([this](const auto&) { showDevice(); }));
    subscriptions.push_back(engine.state().isRunning.subscribe([this](bool) { showRunning(); }));
    showDevice();
}

void MixerToolbar::showDevice() {
    const bool isSelected = engine.state().selectedDevice.get().has_value();
    oneToOne->setEnabled(isSelected);
    startStop->setEnabled(isSelected);
    showRunning();
}

void MixerToolbar::showRunning() {
    const bool isRunning = engine.state().isRunning.get();
    static_cast<Button*>(startStop)->present(
        isRunning ? QStringLiteral("stop") : QStringLiteral("start"),
        isRunning ? QStringLiteral("Stop") : QStringLiteral("Start")
    );
    startStop->setToolTip(
        !startStop->isEnabled() ? QStringLiteral("Select an audio device first.")
        : isRunning             ? QStringLiteral("Stop the audio engine.")
                                : QStringLiteral("Start the audio engine.")
    );
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
