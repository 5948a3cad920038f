#include "ui/meters/accessible_meters.h"

#include "ui/meters/segment_meter.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace orvane::ui {

namespace {

/// Presents a meter with the value that it shows.
class AccessibleMeter final : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit AccessibleMeter(SegmentMeter* shown)
        : QAccessibleWidget(shown, QAccessible::ProgressBar), meter(*shown) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        // On Linux, screen readers receive no other text of a value.
        const bool isValue = kind == QAccessible::Value || kind == QAccessible::Description;
        return isValue ? meter.reading().text : QAccessibleWidget::text(kind);
    }

    [[nodiscard]] QVariant currentValue() const override { return meter.reading().value; }
    void setCurrentValue(const QVariant& /*value*/) override {}
    [[nodiscard]] QVariant maximumValue() const override { return meter.reading().highest; }
    [[nodiscard]] QVariant minimumValue() const override { return meter.reading().lowest; }
    [[nodiscard]] QVariant minimumStepSize() const override { return 0.0; }

  private:
    SegmentMeter& meter;
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    auto* const meter = dynamic_cast<SegmentMeter*>(object);
    return meter == nullptr ? nullptr : new AccessibleMeter(meter);
}

} // namespace

void makeMetersAccessible() {
    QAccessible::installFactory(makeInterface);
}

} // namespace orvane::ui
