#pragma once

#include "ui/controls/control_group.h"

#include <QStringList>

#include <functional>
#include <vector>

class QAbstractButton;

namespace orvane::ui {

/// A few choices, all visible side by side. The arrow keys move between them.
class SegmentedPicker final : public ControlGroup {
  public:
    /// `onChoose` receives the index of the user's choice. `name`: for screen readers.
    SegmentedPicker(
        const QString& name, const QStringList& choices, std::function<void(int)> onChoose,
        QWidget* parent = nullptr
    );

    [[nodiscard]] int current() const { return chosen; }
    /// Shows a choice without calling `onChoose`.
    void setCurrent(int choice);

    /// Marks a choice as neutral: it is highlighted without a colour.
    void setNeutral(int choice);

    /// The button of a choice.
    [[nodiscard]] QAbstractButton& segment(int choice) const {
        return *segments[static_cast<std::size_t>(choice)];
    }

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void choose(int choice);

    const std::function<void(int)> changed;
    std::vector<QAbstractButton*> segments;
    int chosen = -1;
};

} // namespace orvane::ui
