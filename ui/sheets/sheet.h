#pragma once

#include <QDialog>

class QScrollArea;
class QWidget;

namespace orvane::ui {

/// A panel of fixed size in front of a window. The window is blocked until the panel is closed by its button
/// or Esc. The panel is smaller on a screen that does not hold it. Main thread.
class Sheet : public QDialog {
  public:
    Sheet(const QString& title, const QSize& size, QWidget* parent);
};

/// Makes an area that scrolls the content of a sheet vertically if the sheet is too low for it.
QScrollArea* makeSheetArea(QWidget* content);

/// Makes a "Done" button that closes the sheet.
QWidget* makeDoneButton(QDialog& sheet);

} // namespace orvane::ui
