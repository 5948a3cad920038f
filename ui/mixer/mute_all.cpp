#include "ui/mixer/mute_all.h"

#include "ui/controls/confirmation.h"
#include "ui/keys.h"

#include <algorithm>
#include <utility>

namespace orvane::ui {

void MuteAll::ask(QWidget* parent) {
    const auto& strips = engine.state().channelStrips.get();
    std::erase_if(mutedHere, [&strips](const platform::Uuid& id) {
        return std::ranges::none_of(strips, [&id](const auto& strip) {
            return strip.id == id && strip.muted;
        });
    });
    if (mutedHere.empty())
        return confirm(
            parent,
            {.title = QStringLiteral("Mute every channel?"),
             .message = QStringLiteral("This silences every channel immediately and changes nothing else. To "
                                       "hear them again, press %1 once more: it unmutes the channels that "
                                       "were not muted before. Or unmute each with its Mute button.")
                            .arg(keysOf(KeyCommand::muteAll).first().toString()),
             .action = QStringLiteral("Mute All"),
             .enterGoesAhead = true},
            [this] { mute(); }
        );
    confirm(
        parent,
        {.title = QStringLiteral("Unmute the channels again?"),
         .message =
             QStringLiteral("This unmutes the channels that were muted together (%1) and changes nothing "
                            "else.")
                 .arg(mutedHere.size()),
         .action = QStringLiteral("Unmute"),
         .enterGoesAhead = true},
        [this] { unmute(); }
    );
}

void MuteAll::mute() {
    // The engine replaces the list with every change.
    const std::vector<session::ChannelStrip> strips = engine.state().channelStrips.get();
    for (const session::ChannelStrip& strip : strips) {
        if (strip.muted) continue;
        engine.setMuted(strip.id, true);
        mutedHere.push_back(strip.id);
    }
}

void MuteAll::unmute() {
    for (const platform::Uuid& id : std::exchange(mutedHere, {}))
        engine.setMuted(id, false);
}

} // namespace orvane::ui
