#pragma once

#include <QColor>
#include <QFont>

class QApplication;

namespace orvane::ui {

/// The one look of every window: dark, with few colours that mean something. Main thread.
namespace theme {

/// Behind windows and sheets.
inline const QColor windowBackground = QColor::fromRgbF(0.055F, 0.043F, 0.086F);
/// Behind panels and rows.
inline const QColor panelBackground = QColor::fromRgbF(0.086F, 0.07F, 0.125F);
inline const QColor divider = QColor::fromRgbF(0.3F, 0.26F, 0.38F);
inline const QColor primaryText = QColor(Qt::white);
inline const QColor secondaryText = QColor::fromRgbF(0.67F, 0.64F, 0.73F);
/// What cannot be used now; at least 3:1 on every background.
inline const QColor disabledText = QColor::fromRgbF(0.53F, 0.5F, 0.59F);
/// What is selected, running, on.
inline const QColor accent = QColor::fromRgbF(0.11F, 0.776F, 0.541F);
/// Behind the row, the item or the choice that is selected; at least 4.5:1 under primary text.
inline const QColor selection = accent.darker(170);
/// The other end of the product word's gradient.
inline const QColor secondAccent = QColor::fromRgbF(0.36F, 0.62F, 0.98F);
/// Below the window: wells, tracks, fields.
inline const QColor well = QColor::fromRgbF(0.045F, 0.035F, 0.065F);
/// Above the panel: buttons, thumbs.
inline const QColor raised = QColor::fromRgbF(0.165F, 0.14F, 0.22F);

// Of meters and messages.
inline const QColor green = accent;
inline const QColor orange = QColor::fromRgbF(1.0F, 0.62F, 0.16F);
inline const QColor red = QColor::fromRgbF(1.0F, 0.3F, 0.3F);
inline const QColor pink = QColor::fromRgbF(1.0F, 0.45F, 0.72F);
inline const QColor yellow = QColor::fromRgbF(1.0F, 0.84F, 0.3F);
/// A segment of a meter that is off.
inline const QColor unlit = QColor::fromRgbF(0.5F, 0.5F, 0.5F, 0.15F);

} // namespace theme

/// The system's font in a size in device-independent pixels.
QFont systemFont(int size, QFont::Weight weight = QFont::Normal);
/// The same with digits of one width, for values that change.
QFont monospacedFont(int size, QFont::Weight weight = QFont::Normal);

/// Gives every widget of the program the look. Before the first window.
void applyTheme(QApplication& application);

} // namespace orvane::ui
