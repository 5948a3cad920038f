#include "ui/editors/parameter_row.h"

#include "ui/controls/menu_picker.h"
#include "ui/controls/text_label.h"
#include "ui/controls/value_field.h"
#include "ui/controls/value_slider.h"
#include "ui/editors/parameter_scale.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QProgressBar>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::ui {

namespace {

using platform::AUParameterInfo;

constexpr int nameWidth = 150;
constexpr int controlWidth = 200;
constexpr int valueWidth = 96;
constexpr int rowHeight = 24;
constexpr int spacing = 10;
constexpr int meterPlaces = 1000;

/// Returns a choice's label; its value if it has no name.
QString labelOf(const AUParameterInfo::NamedValue& choice) {
    const QString label = QString::fromStdString(choice.label).simplified();
    return label.isEmpty() ? QString::number(choice.value) : label;
}

} // namespace

ParameterRow::ParameterRow(platform::AUParameter& edited) : parameter(edited) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    const QString displayName = QString::fromStdString(parameter.info().displayName);
    QLabel* const name = makeText(displayName, TextStyle::callout, theme::secondaryText);
    name->setFixedWidth(nameWidth);
    name->setMinimumHeight(rowHeight);
    name->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    row->addWidget(name);
    setAccessibleName(displayName);
    makeControl();
    row->addStretch();
    // NaN differs from every value, so that the first refresh shows the real one.
    shownValue = std::nanf("");
    refresh();
}

void ParameterRow::makeControl() {
    const AUParameterInfo& info = parameter.info();
    if (info.isReadOnly) return makeMeter();
    switch (info.kind) {
    case AUParameterInfo::Kind::toggle:
        return makeToggle();
    case AUParameterInfo::Kind::choice:
        return makeMenu();
    case AUParameterInfo::Kind::continuous:
    case AUParameterInfo::Kind::integer:
        makeSlider();
    }
}

void ParameterRow::makeSlider() {
    const AUParameterInfo& info = parameter.info();
    // The slider covers shares of the range, which may be logarithmic or change with the sample rate.
    const double steps = info.kind == AUParameterInfo::Kind::integer && !info.isLogarithmic
                             ? static_cast<double>(info.maxValue) - static_cast<double>(info.minValue)
                             : static_cast<double>(std::max<std::int64_t>(info.stepCount - 1, 0));
    auto* const slider = new ValueSlider(
        accessibleName(),
        {.step = steps > 0.0 ? 1.0 / steps : 0.0, .defaultValue = shareOfRange(info, info.defaultValue)},
        [this](double share) { choose(valueAtShare(parameter.info(), share)); }
    );
    slider->setFixedWidth(controlWidth);
    slider->setToolTip(QStringLiteral("Double-click the handle for %1.").arg(write(info.defaultValue)));
    auto* const value = new ValueField(
        QStringLiteral("%1 value").arg(accessibleName()),
        {.write = [this](double shown) { return write(shown); },
         // The parameter itself limits the value to its range.
         .lowest = std::numeric_limits<float>::lowest(),
         .highest = std::numeric_limits<float>::max(),
         .width = valueWidth,
         .alignment = Qt::AlignLeft},
        [this](double typed) { choose(typed); }
    );
    layout()->addWidget(slider);
    layout()->addWidget(value);
    show = [this, slider, value](float now) {
        slider->setValue(shareOfRange(parameter.info(), now));
        value->setValue(now);
    };
}

void ParameterRow::makeMenu() {
    const auto& named = parameter.info().namedValues;
    auto* const menu = new MenuPicker(accessibleName(), controlWidth, [this](int place) {
        choose(parameter.info().namedValues[static_cast<std::size_t>(place)].value);
    });
    QStringList labels;
    for (const AUParameterInfo::NamedValue& choice : named)
        labels.append(labelOf(choice));
    layout()->addWidget(menu);
    show = [this, menu, labels](float now) {
        const auto& choices = parameter.info().namedValues;
        const auto found = std::ranges::find(choices, now, &AUParameterInfo::NamedValue::value);
        menu->present(
            labels, found == choices.end() ? -1 : static_cast<int>(found - choices.begin()), write(now)
        );
    };
}

void ParameterRow::makeToggle() {
    auto* const toggle = new QCheckBox;
    toggle->setAccessibleName(accessibleName());
    connect(toggle, &QCheckBox::clicked, this, [this](bool isOn) {
        choose(isOn ? parameter.info().maxValue : parameter.info().minValue);
    });
    layout()->addWidget(toggle);
    show = [toggle](float now) { toggle->setChecked(now > 0.0F); };
}

void ParameterRow::makeMeter() {
    auto* const meter = new QProgressBar;
    meter->setRange(0, meterPlaces);
    meter->setTextVisible(false);
    meter->setFixedSize(controlWidth, 6);
    meter->setAccessibleName(accessibleName());
    QLabel* const value = makeText({}, TextStyle::caption, theme::secondaryText);
    value->setFont(monospacedFont(11));
    value->setWordWrap(false);
    value->setFixedWidth(valueWidth);
    layout()->addWidget(meter);
    layout()->addWidget(value);
    show = [this, meter, value](float now) {
        meter->setValue(static_cast<int>(std::lround(shareOfRange(parameter.info(), now) * meterPlaces)));
        value->setText(write(now));
    };
}

void ParameterRow::choose(double value) {
    parameter.setValue(static_cast<float>(value));
    refresh();
}

void ParameterRow::refresh() {
    const AUParameterInfo& info = parameter.info();
    // The output of a plugin's meter may be any number.
    const float now = std::isfinite(parameter.value()) ? parameter.value() : info.minValue;
    if (now == shownValue && info.minValue == shownMin && info.maxValue == shownMax) return;
    shownValue = now;
    shownMin = info.minValue;
    shownMax = info.maxValue;
    show(now);
}

QString ParameterRow::write(double value) const {
    return writtenValue(parameter.info(), value);
}

} // namespace orvane::ui
