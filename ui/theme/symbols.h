#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

namespace orvane::ui {

/// Returns one of the program's symbols by its file name in assets/icons. Sharp at every size; dimmed if the
/// control is disabled. Main thread.
QIcon symbol(const QString& name);

/// Returns the logo in `size` device-independent pixels, for a screen of this pixel ratio.
QPixmap logo(int size, double devicePixelRatio);

/// Returns the logo as the icon of windows.
QIcon applicationIcon();

} // namespace orvane::ui
