#pragma once

#include <QColor>
#include <QRectF>
#include <QSizeF>

#include <vector>

namespace orvane::ui {

// The layout of meters in segments and the number of lit ones; segment 0 is at the start of a meter.

/// The end at which a vertical meter starts.
enum class MeterOrigin { bottom, top };

/// Returns the segments of a meter of this size along its longer side, `gap` points apart; empty if they do
/// not fit.
std::vector<QRectF> layOutSegments(QSizeF size, int count, double gap, MeterOrigin origin);

/// Returns the number of lit segments of a level meter (-40 to +6 dB) for a linear RMS level.
int litLevelSegments(double level, int count);
/// Returns the number of lit segments of a gain-reduction meter (0 to 30 dB).
int litReductionSegments(double reductionDB, int count);
/// Returns the number of lit segments of a load meter (0 to 1).
int litLoadSegments(double load, int count);
/// Returns the number of segments that a load fills completely.
int fullLoadSegments(double load, int count);

/// Returns the position of a level in dB on a level meter, 0 to 1.
double levelPosition(double levelDB);

/// Returns the colour of a lit segment: red near the end, orange beyond `orangeFrom` of the length, else
/// green.
QColor segmentColor(int segment, int count, double orangeFrom);
/// Returns the colour of a lit segment of a level meter.
QColor levelColor(int segment, int count);

} // namespace orvane::ui
