#include "ui/mixer/strip_keys.h"

#include "ui/keys.h"
#include "ui/mixer/channel_area.h"

#include <QAction>
#include <QApplication>
#include <QShortcut>

namespace orvane::ui {

StripKeys::StripKeys(engine::MixerEngine& mixerEngine, ChannelArea& channelArea)
    : engine(mixerEngine), area(channelArea), everyStrip(mixerEngine) {
    const auto add = [this](KeyCommand key, const QString& title, bool repeats, auto act) {
        auto* const command = new QAction(title, this);
        command->setShortcuts(keysOf(key));
        command->setAutoRepeat(repeats);
        connect(command, &QAction::triggered, this, act);
        area.addAction(command);
        commands.push_back(command);
    };
    add(KeyCommand::leftStrip, QStringLiteral("Strip on the Left"), true, [this] { area.step(-1); });
    add(KeyCommand::rightStrip, QStringLiteral("Strip on the Right"), true, [this] { area.step(1); });
    add(KeyCommand::mute, QStringLiteral("Mute"), false,
        [this] { withStripInFocus([this](const auto& strip) { engine.setMuted(strip.id, !strip.muted); }); });
    add(KeyCommand::bypass, QStringLiteral("Bypass"), false, [this] {
        withStripInFocus([this](const auto& strip) { engine.setBypassed(strip.id, !strip.bypassed); });
    });
    add(KeyCommand::muteAll, QStringLiteral("Mute All…"), false, [this] { everyStrip.ask(&area); });
    for (const auto& [key, by] :
         {std::pair(KeyCommand::leftFromControl, -1), {KeyCommand::rightFromControl, 1}})
        for (const QKeySequence& keys : keysOf(key)) {
            auto* const shortcut =
                new QShortcut(keys, &area.strips(), nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
            connect(shortcut, &QShortcut::activated, this, [this, by] {
                // An open menu does not take the keys of a shortcut.
                if (QApplication::activePopupWidget() == nullptr) area.step(by);
            });
        }
}

void StripKeys::withStripInFocus(const std::function<void(const session::ChannelStrip&)>& act) const {
    // The engine replaces the list with every change.
    if (const auto index = area.stripInFocus()) {
        const session::ChannelStrip strip = engine.state().channelStrips.get()[*index];
        act(strip);
    }
}

} // namespace orvane::ui
