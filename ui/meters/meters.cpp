#include "ui/meters/meters.h"

#include "dsp/decibels.h"
#include "ui/theme/theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane::ui {

namespace {

constexpr double loadOrangeFrom = 0.6;
constexpr int fadeMs = 100;

constexpr int scaleMarks[] = {0, -10, -15, -20, -25, -30, -40};
constexpr int scaleTextSize = 8;
/// The distance of the silence mark from the quiet end of the meter.
constexpr double silenceDistance = 9.0;
/// How far the labels extend beyond the ends of a vertical and of a horizontal scale.
constexpr QMargins uprightOverhang(0, 8, 0, 18);
constexpr QMargins lyingOverhang(18, 2, 12, 2);

constexpr int columnSegments = 20;
constexpr QSize columnSize(54, 150);
constexpr QSize smallestColumn(46, 56);
/// The least distance between two marks of an upright scale.
constexpr double closestMarks = 10.0;
constexpr int widestColumn = 74;
constexpr int columnSpacing = 3;
constexpr int reductionWidth = 10;
constexpr int scaleWidth = 20;
constexpr int wideMeterLength = 240;
constexpr int shortestWideMeter = 150;
constexpr int wideMeterHeight = 14;
constexpr int wideScaleHeight = 10;
constexpr int peakLineWidth = 2;
/// Fine enough for the few dB of a limiter.
constexpr int wideReductionSegments = 40;
constexpr int wideReductionHeight = 4;
/// The distance of a lamp from its surroundings.
constexpr int lampDistance = 3;
/// Half the width of the scale's last label.
constexpr int lastLabelWidth = 5;

constexpr const char* reductionHelp =
    "Gain reduction -- how far the automix is currently holding this channel below unity, in dB.";
constexpr const char* inputClipHelp =
    "Lit once this channel's input has reached full scale: lower the microphone's gain on the interface. "
    "Click to reset all clip lamps.";
constexpr const char* limiterHelp = "By how much the limiter turns the outputs down, 0 to 30 dB.";

// The ranges of the meters.
constexpr double lowestLevelDB = -40.0;
constexpr double highestLevelDB = 6.0;
constexpr double highestReductionDB = 30.0;

QString writeDecibels(double value) {
    return QStringLiteral("%1 dB").arg(std::lround(value));
}

} // namespace

MeterView::MeterView(int segmentCount, std::optional<QColor> tint, QWidget* parent)
    : SegmentMeter(segmentCount, {}, parent), tintColor(tint) {}

void MeterView::setLevel(double level) {
    shown = level;
    setLit(litLevelSegments(level, segmentCount()));
}

SegmentMeter::Reading MeterView::reading() const {
    const double levelDB = std::clamp(dsp::linearToDB(shown), lowestLevelDB, highestLevelDB);
    return {
        levelDB, lowestLevelDB, highestLevelDB,
        levelDB > lowestLevelDB ? writeDecibels(levelDB) : QStringLiteral("silent")};
}

QColor MeterView::colorOf(int segment) const {
    return tintColor.value_or(levelColor(segment, segmentCount()));
}

void MeterView::setPeak(std::optional<double> linearPeak) {
    const QRect before = peakLine();
    peak = linearPeak;
    const QRect now = peakLine();
    if (now == before) return;
    update(before);
    update(now);
}

QRect MeterView::peakLine() const {
    const double position = peak ? levelPosition(dsp::linearToDB(*peak)) : 0.0;
    if (position <= 0.0) return {};
    const int left = static_cast<int>(std::lround(position * (width() - peakLineWidth)));
    return {left, 0, peakLineWidth, height()};
}

void MeterView::paintEvent(QPaintEvent* event) {
    SegmentMeter::paintEvent(event);
    QPainter(this).fillRect(peakLine(), theme::primaryText);
}

GateMeterView::GateMeterView(int segmentCount, QWidget* parent)
    : SegmentMeter(segmentCount, {.origin = MeterOrigin::top}, parent) {}

void GateMeterView::setReductionDB(double reductionDB) {
    shownDB = reductionDB;
    setLit(litReductionSegments(reductionDB, segmentCount()));
}

SegmentMeter::Reading GateMeterView::reading() const {
    return {std::min(shownDB, highestReductionDB), 0.0, highestReductionDB, writeDecibels(shownDB)};
}

QColor GateMeterView::colorOf(int) const {
    return theme::darkOrange;
}

LoadMeterView::LoadMeterView(int segmentCount, QWidget* parent)
    : SegmentMeter(segmentCount, {.gap = 1.5, .cornerRadius = 1.0}, parent) {
    fade.setDuration(fadeMs);
    fade.setStartValue(0.0);
    fade.setEndValue(1.0);
    connect(&fade, &QVariantAnimation::valueChanged, this, [this] { repaintFading(); });
}

void LoadMeterView::repaintFading() {
    repaintSegments(std::min(litBefore, litSegments()), std::max(litBefore, litSegments()));
}

SegmentMeter::Reading LoadMeterView::reading() const {
    return {shown, 0.0, 1.0, QStringLiteral("%1 %").arg(std::lround(100.0 * shown))};
}

void LoadMeterView::setLoad(double load) {
    shown = load;
    const int fullNow = fullLoadSegments(load, segmentCount());
    const bool fades = std::exchange(full, fullNow) != fullNow;
    const int litNow = litLoadSegments(load, segmentCount());
    if (litNow == litSegments()) return;
    if (fade.state() == QVariantAnimation::Running) repaintFading();
    fade.stop();
    litBefore = litSegments();
    setLit(litNow);
    if (fades) fade.start();
}

QColor LoadMeterView::colorOf(int segment) const {
    return segmentColor(segment, segmentCount(), loadOrangeFrom);
}

double LoadMeterView::brightnessOf(int segment) const {
    const double after = segment < litSegments() ? 1.0 : 0.0;
    if (fade.state() != QVariantAnimation::Running) return after;
    const double before = segment < litBefore ? 1.0 : 0.0;
    return before + (after - before) * fade.currentValue().toDouble();
}

void MeterScaleView::setFrame(const QRect& scaleFrame) {
    const QMargins overhang = scaleFrame.width() < scaleFrame.height() ? uprightOverhang : lyingOverhang;
    frame = QRect(QPoint(overhang.left(), overhang.top()), scaleFrame.size());
    setGeometry(scaleFrame.marginsAdded(overhang));
}

void MeterScaleView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(monospacedFont(scaleTextSize));
    painter.setPen(theme::secondaryText);
    painter.translate(frame.topLeft());
    const bool isVertical = frame.width() < frame.height();
    const auto write = [&](double along, const QString& text) {
        const QSizeF room(40.0, 12.0);
        const QPointF center =
            isVertical ? QPointF(frame.width() / 2.0, along) : QPointF(along, frame.height() / 2.0);
        painter.drawText(
            QRectF(center - QPointF(room.width() / 2.0, room.height() / 2.0), room), Qt::AlignCenter, text
        );
    };
    std::optional<double> last;
    for (const int mark : scaleMarks) {
        const double position = levelPosition(mark);
        const double along = isVertical ? (1.0 - position) * frame.height() : position * frame.width();
        // A low meter has no room for all of them.
        if (isVertical && last && std::abs(along - *last) < closestMarks) continue;
        write(along, QString::number(mark));
        last = along;
    }
    write(isVertical ? frame.height() + silenceDistance : -silenceDistance, QStringLiteral("∞"));
}

ChannelMeterColumn::ChannelMeterColumn(
    audio::MeterModel& meterModel, std::size_t stripIndex, const platform::Published<bool>& isRunning,
    QWidget* parent
)
    : QWidget(parent),
      model(meterModel),
      index(stripIndex),
      level(columnSegments, std::nullopt, this),
      reduction(columnSegments, this),
      scale(this),
      clip(
          QStringLiteral("Input clip"), [&meterModel] { meterModel.resetOvers(); }, this
      ) {
    setGrowing(false);
    level.setAccessibleName(QStringLiteral("Level"));
    reduction.setAccessibleName(QStringLiteral("Gain reduction"));
    reduction.setToolTip(QString::fromUtf8(reductionHelp));
    clip.setToolTip(QString::fromUtf8(inputClipHelp));
    subscriptions.push_back(model.channelMeters.subscribe([this](const auto&) { showLevel(); }));
    subscriptions.push_back(model.channelGainReductionDB.subscribe([this](const auto&) { showReduction(); }));
    subscriptions.push_back(model.inputPeaks.subscribe([this](const auto&) { showOvers(); }));
    subscriptions.push_back(isRunning.subscribe([this](bool now) { rest(now); }));
    rest(isRunning.get());
}

void ChannelMeterColumn::setGrowing(bool grows) {
    const QMargins overhang(0, uprightOverhang.top(), 0, uprightOverhang.bottom());
    setMinimumSize((grows ? smallestColumn : columnSize).grownBy(overhang));
    setMaximumSize(grows ? QSize(widestColumn, QWIDGETSIZE_MAX) : minimumSize());
}

void ChannelMeterColumn::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(monospacedFont(scaleTextSize));
    painter.setPen(theme::secondaryText);
    const QRect above(reduction.x(), 0, reduction.width(), uprightOverhang.top());
    painter.drawText(
        above.adjusted(-scaleTextSize, 0, scaleTextSize, 0), Qt::AlignCenter, QStringLiteral("GR")
    );
}

void ChannelMeterColumn::resizeEvent(QResizeEvent*) {
    const int top = uprightOverhang.top();
    const int length = height() - top - uprightOverhang.bottom();
    const int scaleLeft = width() - scaleWidth;
    const int reductionLeft = scaleLeft - columnSpacing - reductionWidth;
    level.setGeometry(0, top, reductionLeft - columnSpacing, length);
    reduction.setGeometry(reductionLeft, top, reductionWidth, length);
    scale.setFrame(QRect(scaleLeft, top, scaleWidth, length));
    clip.setGeometry(
        0, top + length + lampDistance, scaleLeft - columnSpacing,
        uprightOverhang.bottom() - 2 * lampDistance + 1
    );
}

void ChannelMeterColumn::rest(bool isRunning) {
    level.setResting(!isRunning);
    reduction.setResting(!isRunning);
}

void ChannelMeterColumn::showEvent(QShowEvent*) {
    showLevel();
    showReduction();
    showOvers();
}

// Hidden strips are not updated.

void ChannelMeterColumn::showLevel() {
    if (!isVisible()) return;
    const std::vector<double>& levels = model.channelMeters.get();
    level.setLevel(index < levels.size() ? levels[index] : 0.0);
}

void ChannelMeterColumn::showReduction() {
    if (!isVisible()) return;
    const std::vector<double>& reductions = model.channelGainReductionDB.get();
    reduction.setReductionDB(index < reductions.size() ? reductions[index] : 0.0);
}

void ChannelMeterColumn::showOvers() {
    if (!isVisible()) return;
    const std::vector<audio::SignalPeak>& peaks = model.inputPeaks.get();
    clip.setLit(index < peaks.size() && peaks[index].overs > 0);
}

WideMeterColumn::WideMeterColumn(
    const QString& name, const platform::Published<double>& value, const platform::Published<bool>& isRunning,
    std::optional<QColor> tint, QWidget* parent
)
    : QWidget(parent),
      level(columnSegments, tint, this),
      reduction(wideReductionSegments, this),
      scale(this) {
    reduction.setAccessibleName(QStringLiteral("Limiter reduction"));
    reduction.setToolTip(QString::fromUtf8(limiterHelp));
    reduction.hide();
    setFixedHeight(wideMeterHeight + wideScaleHeight + lyingOverhang.bottom());
    setShrinking(false);
    subscriptions.push_back(value.subscribe([this](double rms) { level.setLevel(rms); }));
    subscriptions.push_back(isRunning.subscribe([this](bool now) { level.setResting(!now); }));
    level.setAccessibleName(name);
    level.setLevel(value.get());
    level.setResting(!isRunning.get());
}

void WideMeterColumn::setShrinking(bool shrinks) {
    const int overhang = lyingOverhang.left() + lyingOverhang.right();
    setMinimumWidth((shrinks ? shortestWideMeter : wideMeterLength) + overhang);
    setMaximumWidth(wideMeterLength + overhang);
}

void WideMeterColumn::setReductionDB(std::optional<double> reductionDB) {
    reduction.setReductionDB(reductionDB.value_or(0.0));
    if (reductionDB.has_value() == reduction.isVisibleTo(this)) return;
    reduction.setVisible(reductionDB.has_value());
    place();
}

void WideMeterColumn::setLamp(ClipLamp* lamp) {
    clip = lamp;
    clip->setParent(this);
    place();
}

void WideMeterColumn::resizeEvent(QResizeEvent*) {
    place();
}

void WideMeterColumn::place() {
    const int left = lyingOverhang.left();
    const int length = width() - left - lyingOverhang.right();
    const bool isLimited = reduction.isVisibleTo(this);
    level.setGeometry(left, 0, length, wideMeterHeight - (isLimited ? wideReductionHeight + 1 : 0));
    reduction.setGeometry(left, wideMeterHeight - wideReductionHeight, length, wideReductionHeight);
    scale.setFrame(QRect(left, wideMeterHeight, length, wideScaleHeight));
    if (clip == nullptr) return;
    const int clipLeft =
        left + static_cast<int>(levelPosition(scaleMarks[0]) * length) + lastLabelWidth + lampDistance;
    clip->setGeometry(clipLeft, wideMeterHeight + 1, width() - clipLeft, height() - wideMeterHeight - 1);
}

} // namespace orvane::ui
