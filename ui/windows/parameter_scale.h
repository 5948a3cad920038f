#pragma once

#include "platform/effects/audio_unit_host.h"

#include <QString>

namespace orvane::ui {

/// Where a value lies within its parameter's range, 0 to 1, as a slider shows it: in equal ratios where the
/// parameter is logarithmic.
double shareOfRange(const platform::AUParameterInfo& info, double value);

/// The value that lies there.
double valueAtShare(const platform::AUParameterInfo& info, double share);

/// A value as an editor writes it: with as many digits as its range asks for, and its unit.
QString writtenValue(const platform::AUParameterInfo& info, double value);

} // namespace orvane::ui
