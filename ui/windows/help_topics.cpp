#include "ui/windows/help_topics.h"

#include "ui/keys.h"

namespace orvane::ui {

namespace {

/// Returns the topic that lists all keys.
HelpTopic keyboardTopic() {
    HelpTopic topic{.id = QStringLiteral("keyboard"), .title = QStringLiteral("Keyboard"), .paragraphs = {}};
    for (const KeyGroup& group : keyGroups()) {
        QString paragraph = group.title;
        for (const KeyEntry& entry : group.entries)
            paragraph +=
                QChar(QChar::LineSeparator) + QStringLiteral("%1 — %2").arg(written(entry), entry.effect);
        topic.paragraphs.append(paragraph);
    }
    return topic;
}

} // namespace

std::vector<HelpTopic> helpTopics() {
    std::vector<HelpTopic> topics = {
        {"overview",
         "What ORVANE Does",
         {"ORVANE is an automatic mixer for live microphones -- panel discussions, interviews, meetings, "
          "choirs, anything with multiple open mics. Instead of you riding faders to bring up whoever is "
          "talking and pull down everyone else, ORVANE listens to all the channels continuously and does "
          "that balancing for you, in real time.",
          "The core idea: at any moment, channels that are currently active get heard clearly, and channels "
          "that are quiet or inactive get gently pulled down -- automatically, smoothly, and without ever "
          "fully cutting anyone off. Nobody has to touch a fader for the automix itself to work; the "
          "channel strip faders and trims are there for the overall balance and for creative control on top "
          "of what the automix is already doing.",
          "Everything below explains the individual controls you'll find in the app and what they're for. "
          "It intentionally doesn't get into the technical details of how the automix engine makes its "
          "decisions internally -- just what each control does for your mix and when you'd reach for it."}},
        {"automix",
         "Automatic Gain-Sharing",
         {"Every channel that isn't bypassed or muted takes part in the automix. As people speak or sing, "
          "ORVANE continuously shifts how much of each channel you hear, favoring whoever is currently "
          "active and easing back the ones that aren't.",
          "This isn't a hard gate -- channels don't snap fully open or fully closed. Quiet channels are "
          "always left with a small amount of gain rather than being silenced outright, which is what keeps "
          "the automix sounding natural instead of choppy, and keeps room tone/ambience from disappearing "
          "and reappearing abruptly.",
          "If several channels are active together (a duet, a group answering at once, a choir section), "
          "they share the mix between them rather than fighting over a single winner -- and if everyone "
          "goes quiet at the same time, every channel settles back to an even, unity-gain balance rather "
          "than staying stuck wherever it last was."}},
        {"genderTrigger",
         "The ♂ / ♀ / — Picker",
         {"This picker (found on each channel strip) helps the automix judge how \"active\" that particular "
          "channel is. It does not touch the audio you actually hear at all -- it only adjusts an internal "
          "copy of the signal that the automix uses purely to make its open/close decisions.",
          "Leave it on the neutral (—) setting for most voices. If a particular channel tends to trigger "
          "the automix open more (or less) than it should for a voice that's unusually deep or unusually "
          "bright -- so the automix seems to misjudge how active that person actually is -- try switching "
          "that channel to ♂ or ♀ and see if it tracks that voice more fairly.",
          "It's a per-channel fix for a specific mismatch, not something you need to set on every channel. "
          "When in doubt, leave it neutral."}},
        {"vocalRole",
         "The L / B (Lead / Backing) Picker",
         {"This tag is purely organizational -- it groups a channel under \"Lead\" or \"Backing\" so you "
          "can control that whole group's level together from the Lead/Backing group faders in the Master "
          "section.",
          "It has no effect on the automix decision itself. A channel tagged Backing ducks and opens "
          "exactly the same way it would if it weren't tagged at all -- the tag only adds one more gain "
          "stage on top, so you can pull an entire backing group down (or push a lead up) without "
          "hand-adjusting every channel in that group individually."}},
        {"duckerSpeed",
         "Ducker Release Speed",
         {"This fader sets how quickly a channel relaxes back down once it's no longer the most active "
          "source -- in other words, how fast the automix closes a channel after someone stops talking or "
          "singing.",
          "Faster (toward the left) gives you a tighter, snappier automix that closes quickly between "
          "phrases -- good for busy conversations with a lot of back-and-forth. Slower (toward the right) "
          "holds a channel open longer before it eases down, which is gentler and less likely to clip off "
          "the tail end of a word, but lets more channels stay open at once.",
          "This setting applies globally, to every channel including the pink-noise reference channel "
          "below."}},
        {"pinkNoise",
         "Pink Noise Reference Channel",
         {"This is a constant, quiet reference signal that takes part in the automix decision as if it were "
          "one more \"singer\" -- but it is never sent to any output. You will never hear it; its only job "
          "is to compete for gain-sharing against your real channels.",
          "Its purpose: without it, a room where nobody is currently talking can leave every mic sitting "
          "fully open (since with total silence, the automix has nothing to compare levels against, so it "
          "settles every channel back to unity). Raising this fader makes the automix treat \"nobody's "
          "talking right now\" more assertively, so genuinely silent mics get pulled down further instead "
          "of sitting wide open and picking up room noise.",
          "Set it to 0 to disable the effect entirely. Because the fader's useful range is intentionally "
          "narrow, small moves make a noticeable difference -- start low and raise it gradually until idle "
          "mics behave the way you want."}},
        {"channelControls",
         "Mute, Bypass, and Trim",
         {"Mute silences a channel completely and removes it from the automix decision -- it can't be "
          "heard, and it no longer affects how other channels duck or open.",
          "Bypass takes a channel out of the automix entirely in the other direction: the channel plays "
          "straight through at its own trim, completely unaffected by (and having no effect on) the "
          "automix. Use it for something that should always be at a fixed, manually-controlled level -- "
          "background music, a fixed announcement feed -- that shouldn't duck other channels or get ducked "
          "itself.",
          "Trim is a plain per-channel level control, applied on top of whatever the automix (or bypass) is "
          "already doing -- your everyday \"this person is a bit quiet, give them a bit more\" adjustment."}},
        {"masterLevel",
         "Master Output Level",
         {"The Master section keeps the overall (summed) output at a consistent, chosen loudness regardless "
          "of how many channels happen to be active at once -- one person speaking alone and several people "
          "speaking together will both land at roughly the same overall level, rather than the mix getting "
          "louder every time another mic opens.",
          "The Lead and Backing group faders sit on top of this, letting you balance those two groups "
          "against each other and against the overall target level."}},
        {"routing",
         "Routing",
         {"Each channel strip has its own input and output routing, including an option to send a channel "
          "to a stereo output pair instead of a single mono output. The Master bus has the same stereo "
          "option, and can optionally be sent to a separate device from the rest of the session.",
          "\"Reset to 1:1\" patches every channel straight to the matching input and output number, a quick "
          "way to get back to a known starting point. \"All Outputs Off\" leaves inputs untouched but "
          "clears every output -- handy if you need to kill all outputs quickly, for example if you suspect "
          "feedback."}},
        {"snapshots",
         "Snapshots",
         {"Snapshots store and recall a full mixer state -- routing, levels, and per-channel settings -- as "
          "a numbered scene you can step through and recall on demand.",
          "Store saves the current state into the selected snapshot slot; New creates a fresh one; Recall "
          "brings a stored snapshot back. Copy and Insert let you duplicate or add snapshots without "
          "starting from scratch, Undo reverts your last edit to a snapshot, and Delete removes one. "
          "Snapshots can also be triggered by MIDI -- arm MIDI Learn on a snapshot, then send the MIDI "
          "message you want to trigger it, and that snapshot will recall automatically whenever that "
          "message is received."}},
        {"plugins",
         "Plugin Inserts and Copy/Paste",
         {"Each channel has 5 insert slots for LV2 plugins -- click an empty slot to load a plugin, click a "
          "loaded one to open its editor window.",
          "Copy/Paste (in the status bar) lets you duplicate a loaded plugin, settings and all, onto other "
          "slots: press Copy, then click the loaded plugin you want to copy; press Paste, then click a "
          "destination slot. Paste stays armed afterward, so you can keep clicking more slots to stamp the "
          "same plugin onto all of them -- press Paste again (or Copy) to stop. Either button can also be "
          "pressed once, before clicking a slot, to cancel without doing anything."}},
        {"session",
         "Sessions, Devices, and Channel Count",
         {"Save/Load stores and restores an entire session -- routing, channel names, settings, and "
          "snapshots -- as an .orvane file you can reopen later or share.",
          "Device Settings is where you choose the audio device and MIDI input for the session, and set the "
          "audio buffer size. The channel-count picker sets how many channels this session has; smaller "
          "sessions use less CPU, so it's worth picking the smallest count that fits what you're actually "
          "mixing."}},
        {"requirements",
         "System Requirements",
         {"ORVANE runs on Linux, on 64-bit PCs with PipeWire, JACK or ALSA.",
          "Any interface that PipeWire, JACK or ALSA lists works as the input/output device, including "
          "USB/Thunderbolt audio interfaces and virtual devices such as loopback drivers."}}};
    topics.push_back(keyboardTopic());
    return topics;
}

} // namespace orvane::ui
