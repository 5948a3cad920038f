#pragma once

#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

class QAbstractButton;

namespace orvane::ui {

/// One of a few choices, all in sight side by side. The arrow keys move between them.
class SegmentedPicker final : public QWidget {
  public:
    /// `onChoose` gets the place of what the user chose. `name`: for screen readers.
    SegmentedPicker(
        const QString& name, const QStringList& choices, std::function<void(int)> onChoose,
        QWidget* parent = nullptr
    );

    [[nodiscard]] int current() const { return chosen; }
    /// Shows a choice without telling anybody.
    void setCurrent(int choice);

    /// The choice that stands for nothing special: it is highlighted without a colour.
    void setNeutral(int choice);

    /// The button of a choice.
    [[nodiscard]] QAbstractButton& segment(int choice) const {
        return *segments[static_cast<std::size_t>(choice)];
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void choose(int choice);

    const std::function<void(int)> changed;
    std::vector<QAbstractButton*> segments;
    int chosen = -1;
};

} // namespace orvane::ui
