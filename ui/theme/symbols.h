#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

namespace orvane::ui {

/// One of the program's own symbols by its file's name in assets/icons, sharp at every size; dimmed where the
/// control is disabled. Main thread.
QIcon symbol(const QString& name);

/// The logo, `size` device-independent pixels wide and high, for a screen of this pixel ratio.
QPixmap logo(int size, double devicePixelRatio);

/// The logo as the icon of windows.
QIcon applicationIcon();

} // namespace orvane::ui
