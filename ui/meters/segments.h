#pragma once

#include <QColor>
#include <QRectF>
#include <QSizeF>

#include <optional>
#include <vector>

namespace orvane::ui {

// How meters divide into segments and which of them are lit; segment 0 is where a meter begins.

/// Where a meter begins when it stands upright.
enum class MeterOrigin { bottom, top };

/// The segments of a meter of this size along its longer side, `gap` points apart; none where they do not
/// fit.
std::vector<QRectF> layOutSegments(QSizeF size, int count, double gap, MeterOrigin origin);

/// Lit segments of a level meter, which spans -40 to +6 dB, for a linear RMS level.
int litLevelSegments(double level, int count);
/// Lit segments of a gain-reduction meter, which spans 30 dB.
int litReductionSegments(double reductionDB, int count);
/// Lit segments of a load meter, which spans 0 to 1.
int litLoadSegments(double load, int count);
/// The segments that a load fills wholly.
int fullLoadSegments(double load, int count);

/// Where a level in dB lies on the level meters' range, 0 to 1.
double levelPosition(double levelDB);

/// The colour of a lit segment: red close to the end, orange beyond `orangeFrom` of the length, green before.
QColor segmentColor(int segment, int count, double orangeFrom);

} // namespace orvane::ui
