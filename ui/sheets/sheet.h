#pragma once

#include <QDialog>

class QScrollArea;
class QWidget;

namespace orvane::ui {

/// A panel of fixed size in front of a window, which waits until the panel is closed: by its button or Esc.
/// It is smaller on a screen that does not hold it. Main thread.
class Sheet : public QDialog {
  public:
    Sheet(const QString& title, const QSize& size, QWidget* parent);
};

/// Shows a content of the sheet, scrolled upright where the sheet is too low for it.
QScrollArea* makeSheetArea(QWidget* content);

/// A "Done" button that closes the sheet.
QWidget* makeDoneButton(QDialog& sheet);

} // namespace orvane::ui
