#include "ui/mixer/missing_plugins.h"

#include <cstddef>

namespace orvane::ui {

namespace {

constexpr qsizetype mostLines = 8;

QString describe(const session::ChannelStrip& strip, std::size_t slot) {
    return QStringLiteral("%1 (%2, insert %3)")
        .arg(QString::fromStdString(strip.pluginSlots[slot].pluginName.value_or("Plugin")))
        .arg(QString::fromStdString(strip.name))
        .arg(slot + 1);
}

} // namespace

QStringList missingPlugins(const engine::MixerEngine& engine) {
    const auto& states = engine.state().pluginLoadStates.get();
    QStringList lines;
    for (const session::ChannelStrip& strip : engine.state().channelStrips.get())
        for (std::size_t slot = 0; slot < strip.pluginSlots.size(); ++slot) {
            const session::PluginSlot& record = strip.pluginSlots[slot];
            if ((record.pluginName || record.component) && !states.contains({strip.id, slot}))
                lines.append(describe(strip, slot));
        }
    if (lines.size() <= mostLines) return lines;
    const qsizetype more = lines.size() - mostLines;
    lines.resize(mostLines);
    lines.append(QStringLiteral("and %1 more").arg(more));
    return lines;
}

} // namespace orvane::ui
