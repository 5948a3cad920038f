#include "ui/strip/strip_signs.h"

#include "ui/controls/sign.h"

#include <QHBoxLayout>

#include <array>
#include <cmath>
#include <cstddef>
#include <variant>

namespace orvane::ui {

namespace {

constexpr int lineHeight = 26;
constexpr int spacing = 1;
constexpr int smallestPicker = 20;
constexpr int pickerShare = 5;
constexpr int signShare = 2;

constexpr const char* unset = "–";

/// A sign and its meaning.
struct Choice {
    const char* sign;
    const char* name;
};

/// Shows one of three choices, of which the first is the default.
void showChoice(Sign& sign, const QString& help, std::size_t chosen, const std::array<Choice, 3>& choices) {
    const Choice& choice = choices[chosen];
    sign.show(QString::fromUtf8(choice.sign), chosen != 0, help.arg(QString::fromUtf8(choice.name)));
}

/// The channels of a menu's entry, such as "In 3", without the word.
QString channelsIn(const QString& entry) {
    const QString last = entry.section(' ', -1);
    return last == QStringLiteral("None") ? QString::fromUtf8(unset) : last;
}

QString describePan(double pan) {
    const int percent = static_cast<int>(std::lround(std::abs(pan) * 100.0));
    if (percent == 0) return QStringLiteral("centre");
    return QStringLiteral("%1 % %2").arg(percent).arg(
        pan < 0.0 ? QStringLiteral("left") : QStringLiteral("right")
    );
}

QString describeOutput(const session::ChannelStrip& strip, const QString& entry) {
    const auto* const stereo = std::get_if<session::output::Stereo>(&strip.outputRouting);
    if (stereo == nullptr) return QStringLiteral("Output: %1").arg(entry);
    return QStringLiteral("Output: %1, stereo, pan %2").arg(entry, describePan(stereo->pan));
}

} // namespace

StripSigns::StripSigns(const std::function<void()>& openSetup)
    : line(new QHBoxLayout(this)),
      filter(new Sign(QStringLiteral("Trigger filter in Setup"), openSetup)),
      group(new Sign(QStringLiteral("Vocal group in Setup"), openSetup)),
      inserts(new Sign(QStringLiteral("Inserts in Setup"), openSetup)) {
    setFixedHeight(lineHeight);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(spacing);
    for (Sign* sign : {filter, group, inserts})
        line->addWidget(sign, signShare);
}

void StripSigns::hold(const RoutingPicker& input, const RoutingPicker& output) {
    line->insertWidget(0, input.widget(), pickerShare);
    line->addWidget(output.widget(), pickerShare);
    for (MenuPicker* picker : {input.widget(), output.widget()}) {
        picker->setFixedHeight(lineHeight);
        picker->setMinimumWidth(smallestPicker);
        picker->setMaximumWidth(QWIDGETSIZE_MAX);
    }
}

void StripSigns::present(
    const session::ChannelStrip& strip, const RoutingPicker& input, const RoutingPicker& output
) {
    const QString from = input.widget()->currentText();
    const QString to = output.widget()->currentText();
    input.widget()->setSign(QStringLiteral("▸%1").arg(channelsIn(from)));
    input.widget()->setToolTip(QStringLiteral("Input: %1").arg(from));
    output.widget()->setSign(QStringLiteral("%1▸").arg(channelsIn(to)));
    output.widget()->setToolTip(describeOutput(strip, to));

    showChoice(
        *filter, QStringLiteral("Trigger filter: %1"), static_cast<std::size_t>(strip.genderMode),
        {{{unset, "none"}, {"♂", "male"}, {"♀", "female"}}}
    );
    showChoice(
        *group, QStringLiteral("Vocal group: %1"), static_cast<std::size_t>(strip.vocalRole),
        {{{unset, "none"}, {"L", "Lead"}, {"B", "Backing"}}}
    );
    QStringList plugins;
    for (const auto& slot : strip.pluginSlots)
        if (slot.pluginName) plugins.append(QString::fromStdString(*slot.pluginName));
    inserts->show(
        plugins.isEmpty() ? QString::fromUtf8(unset) : QString::number(plugins.size()), !plugins.isEmpty(),
        QStringLiteral("Inserts: %1")
            .arg(plugins.isEmpty() ? QStringLiteral("none") : plugins.join(QStringLiteral(", ")))
    );
}

} // namespace orvane::ui
