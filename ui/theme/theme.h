#pragma once

#include <QColor>
#include <QFont>

class QApplication;

namespace orvane::ui {

/// The look of every window: dark, with few colours that carry meaning. Main thread.
namespace theme {

/// The background of windows and sheets.
inline const QColor windowBackground = QColor::fromRgbF(0.055F, 0.043F, 0.086F);
/// The background of panels and rows.
inline const QColor panelBackground = QColor::fromRgbF(0.086F, 0.07F, 0.125F);
inline const QColor divider = QColor::fromRgbF(0.3F, 0.26F, 0.38F);
inline const QColor primaryText = QColor(Qt::white);
inline const QColor secondaryText = QColor::fromRgbF(0.67F, 0.64F, 0.73F);
/// Disabled text; contrast at least 3:1 on every background.
inline const QColor disabledText = QColor::fromRgbF(0.53F, 0.5F, 0.59F);
/// Selected, running or on.
inline const QColor accent = QColor::fromRgbF(0.11F, 0.776F, 0.541F);
/// The background of the selected row, item or choice; contrast at least 4.5:1 with primary text.
inline const QColor selection = accent.darker(170);
/// The other end of the wordmark's gradient.
inline const QColor secondAccent = QColor::fromRgbF(0.36F, 0.62F, 0.98F);
/// Sunken surfaces: wells, tracks, fields.
inline const QColor well = QColor::fromRgbF(0.045F, 0.035F, 0.065F);
/// Raised surfaces: buttons, thumbs.
inline const QColor raised = QColor::fromRgbF(0.165F, 0.14F, 0.22F);

// The colours of meters and messages.
inline const QColor green = accent;
inline const QColor orange = QColor::fromRgbF(1.0F, 0.62F, 0.16F);
/// Gain reduction, beside levels that are partly orange.
inline const QColor darkOrange = QColor::fromRgbF(0.71F, 0.4F, 0.06F);
inline const QColor red = QColor::fromRgbF(1.0F, 0.3F, 0.3F);
inline const QColor pink = QColor::fromRgbF(1.0F, 0.45F, 0.72F);
inline const QColor yellow = QColor::fromRgbF(1.0F, 0.84F, 0.3F);
/// An unlit meter segment.
inline const QColor unlit = QColor::fromRgbF(0.5F, 0.5F, 0.5F, 0.15F);

/// The width of the outline of a control with the keyboard focus.
inline constexpr double focusWidth = 2.0;
/// The least height of buttons and rows that a finger must hit.
inline constexpr int touchTarget = 32;

} // namespace theme

/// Returns the system's font in a size in device-independent pixels.
QFont systemFont(int size, QFont::Weight weight = QFont::Normal);
/// Returns a font with digits of equal width, for values that change.
QFont monospacedFont(int size, QFont::Weight weight = QFont::Normal);

/// Applies the look to every widget of the program. Called before the first window.
void applyTheme(QApplication& application);

} // namespace orvane::ui
