#include "ui/meters/segments.h"

#include "ui/theme/theme.h"

#include <algorithm>
#include <cmath>

namespace orvane::ui {

namespace {

constexpr double lowestLevelDB = -40.0;
constexpr double levelSpanDB = 46.0;
constexpr double smallestLevel = 0.0001;
constexpr double fullReductionDB = 30.0;
constexpr double levelOrangeFrom = 0.7;
constexpr double redFrom = 0.85;
constexpr double shortestSegment = 1.0;

int litOf(double share, int count) {
    return static_cast<int>(std::ceil(std::clamp(share, 0.0, 1.0) * count));
}

} // namespace

std::vector<QRectF> layOutSegments(QSizeF size, int count, double gap, MeterOrigin origin) {
    const bool isVertical = size.height() > size.width();
    const double length = isVertical ? size.height() : size.width();
    const double gaps = gap * (count - 1);
    if (size.width() <= 0.0 || size.height() <= 0.0 || count < 1 || length < gaps + count) return {};
    const double segment = std::max((length - gaps) / count, shortestSegment);
    std::vector<QRectF> segments;
    for (int k = 0; k < count; ++k) {
        const double begin = k * (segment + gap);
        if (!isVertical)
            segments.emplace_back(begin, 0.0, segment, size.height());
        else if (origin == MeterOrigin::top)
            segments.emplace_back(0.0, begin, size.width(), segment);
        else
            segments.emplace_back(0.0, length - begin - segment, size.width(), segment);
    }
    return segments;
}

int litLevelSegments(double level, int count) {
    return litOf(levelPosition(20.0 * std::log10(std::max(level, smallestLevel))), count);
}

int litReductionSegments(double reductionDB, int count) {
    return reductionDB > 0.0 ? litOf(reductionDB / fullReductionDB, count) : 0;
}

int litLoadSegments(double load, int count) {
    return litOf(load, count);
}

int fullLoadSegments(double load, int count) {
    return static_cast<int>(std::floor(std::clamp(load, 0.0, 1.0) * count));
}

double levelPosition(double levelDB) {
    return std::clamp((levelDB - lowestLevelDB) / levelSpanDB, 0.0, 1.0);
}

QColor segmentColor(int segment, int count, double orangeFrom) {
    const double position = static_cast<double>(segment + 1) / count;
    if (position > redFrom) return theme::red;
    return position > orangeFrom ? theme::orange : theme::green;
}

QColor levelColor(int segment, int count) {
    return segmentColor(segment, count, levelOrangeFrom);
}

} // namespace orvane::ui
