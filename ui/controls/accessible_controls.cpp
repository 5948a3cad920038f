#include "ui/controls/accessible_controls.h"

#include "ui/controls/segmented_picker.h"
#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"

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

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    if (auto* const fader = dynamic_cast<VerticalFader*>(object)) return new AccessibleFader(fader);
    if (auto* const slider = dynamic_cast<ValueSlider*>(object)) return new AccessibleFader(slider);
    if (auto* const picker = dynamic_cast<SegmentedPicker*>(object))
        return new QAccessibleWidget(picker, QAccessible::Grouping);
    return nullptr;
}

} // namespace

void makeControlsAccessible() {
    QAccessible::installFactory(makeInterface);
}

} // namespace orvane::ui
