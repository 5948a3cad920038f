#include "ui/editors/parameter_scale.h"

#include <algorithm>
#include <cmath>

namespace orvane::ui {

namespace {

using platform::AUParameterInfo;

/// Returns the number of digits after the point that are significant for the range.
int digitsFor(const AUParameterInfo& info) {
    if (info.kind != AUParameterInfo::Kind::continuous) return 0;
    const double span = static_cast<double>(info.maxValue) - static_cast<double>(info.minValue);
    return span >= 1000.0 ? 0 : span >= 50.0 ? 1 : span >= 5.0 ? 2 : 3;
}

} // namespace

double shareOfRange(const AUParameterInfo& info, double value) {
    const double lowest = info.minValue;
    const double highest = info.maxValue;
    if (highest <= lowest) return 0.0;
    const double kept = std::clamp(value, lowest, highest);
    if (info.isLogarithmic) return std::log(kept / lowest) / std::log(highest / lowest);
    return (kept - lowest) / (highest - lowest);
}

double valueAtShare(const AUParameterInfo& info, double share) {
    const double lowest = info.minValue;
    const double highest = info.maxValue;
    if (info.isLogarithmic) return lowest * std::pow(highest / lowest, share);
    return lowest + (highest - lowest) * share;
}

QString writtenValue(const AUParameterInfo& info, double value) {
    const QString number = QString::number(value, 'f', digitsFor(info));
    return info.unitName.empty() ? number
                                 : QStringLiteral("%1 %2").arg(number, QString::fromStdString(info.unitName));
}

} // namespace orvane::ui
