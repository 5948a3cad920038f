#pragma once

#include "platform/effects/audio_unit_host.h"

#include <QString>

namespace orvane::ui {

/// Returns the position of a value on its parameter's slider, 0 to 1; logarithmic if the parameter is.
double shareOfRange(const platform::AUParameterInfo& info, double value);

/// Returns the value at a position.
double valueAtShare(const platform::AUParameterInfo& info, double share);

/// Formats a value with the digits that suit its range, and its unit.
QString writtenValue(const platform::AUParameterInfo& info, double value);

} // namespace orvane::ui
