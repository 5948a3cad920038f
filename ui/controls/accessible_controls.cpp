#include "ui/controls/accessible_controls.h"

#include "ui/controls/control_group.h"
#include "ui/controls/menu_picker.h"
#include "ui/controls/segmented_picker.h"
#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>

namespace orvane::ui {

namespace {

/// Presents a fader or a slider with its own values.
template <class Fader>
class AccessibleFader final : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit AccessibleFader(Fader* shown) : QAccessibleWidget(shown, QAccessible::Slider), fader(*shown) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    [[nodiscard]] QVariant currentValue() const override { return fader.value(); }
    void setCurrentValue(const QVariant& value) override { fader.choose(value.toDouble()); }
    [[nodiscard]] QVariant maximumValue() const override { return fader.highest(); }
    [[nodiscard]] QVariant minimumValue() const override { return fader.lowest(); }
    [[nodiscard]] QVariant minimumStepSize() const override { return fader.step(); }

  private:
    Fader& fader;
};

/// Presents a button that may be on or off. Assistive tools press it as the user does, because its owner
/// decides on the state.
class AccessibleButton final : public QAccessibleWidget {
  public:
    explicit AccessibleButton(QAbstractButton* shown) : QAccessibleWidget(shown), button(*shown) {}

    [[nodiscard]] QAccessible::Role role() const override {
        if (!button.isCheckable()) return QAccessible::Button;
        const bool isChoice = dynamic_cast<const SegmentedPicker*>(button.parentWidget()) != nullptr;
        return isChoice ? QAccessible::RadioButton : QAccessible::CheckBox;
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = button.isCheckable();
        state.checked = button.isChecked();
        return state;
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        const QString own = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && own.isEmpty() ? button.text() : own;
    }
    [[nodiscard]] QStringList actionNames() const override {
        return {button.isCheckable() ? toggleAction() : pressAction()};
    }
    void doAction(const QString& name) override {
        if (actionNames().contains(name)) button.click();
    }

  private:
    QAbstractButton& button;
};

/// Presents a menu of choices under its own name. On Linux, Qt would give it the name of the current choice.
class AccessiblePicker final : public QAccessibleWidget {
  public:
    explicit AccessiblePicker(MenuPicker* shown)
        : QAccessibleWidget(shown, QAccessible::ComboBox), picker(*shown) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        // On Linux, screen readers receive no other text of a value.
        const bool isValue = kind == QAccessible::Value || kind == QAccessible::Description;
        return isValue ? picker.currentText() : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] int childCount() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(picker.view()) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        return child != nullptr && child->object() == picker.view() ? 0 : -1;
    }
    [[nodiscard]] QStringList actionNames() const override { return {showMenuAction()}; }
    void doAction(const QString& name) override {
        if (name == showMenuAction() && picker.isEnabled()) picker.showPopup();
    }

  private:
    MenuPicker& picker;
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    if (auto* const fader = dynamic_cast<VerticalFader*>(object)) return new AccessibleFader(fader);
    if (auto* const slider = dynamic_cast<ValueSlider*>(object)) return new AccessibleFader(slider);
    if (auto* const group = dynamic_cast<ControlGroup*>(object))
        return new QAccessibleWidget(group, QAccessible::Grouping);
    if (auto* const picker = dynamic_cast<MenuPicker*>(object)) return new AccessiblePicker(picker);
    auto* const button = qobject_cast<QAbstractButton*>(object);
    if (button != nullptr && !object->inherits("QPushButton") && !object->inherits("QToolButton"))
        return new AccessibleButton(button);
    return nullptr;
}

} // namespace

void makeControlsAccessible() {
    QAccessible::installFactory(makeInterface);
}

} // namespace orvane::ui
