#pragma once

#include <QDialog>

class QWidget;

namespace orvane::ui {

/// A panel of fixed size in front of a window, which waits until the panel is closed: by its button or Esc.
/// Main thread.
class Sheet : public QDialog {
  public:
    Sheet(const QString& title, const QSize& size, QWidget* parent);
};

/// A "Done" button that closes the sheet.
QWidget* makeDoneButton(QDialog& sheet);

} // namespace orvane::ui
