#include "soak/operation.h"

#include <utility>

namespace orvane::soak {

namespace {

constexpr std::size_t mostPresets = 8;

void load(Hands& h) {
    const auto installed = h.engine().availableInsertComponents();
    std::optional<platform::PropertyList::Data> preset;
    if (h.choices.oneIn(4)) preset = platform::PropertyList::Data(h.choices.below(64), 0x62);
    h.engine().loadPlugin(h.choices.of(installed), h.slot(), h.strip(), preset);
}

/// Instances are delivered at once, on request, or never.
void changeDelivery(Hands& h) {
    using Delivery = test::ScriptedAudioUnitHost::Delivery;
    h.stage.effects.delivery = h.flag() ? Delivery::byHand : Delivery::atOnce;
    h.stage.effects.failure.reset();
    if (h.choices.oneIn(8)) h.stage.effects.failure = platform::Error{h.flag() ? "no more room" : ""};
}

void deliver(Hands& h) {
    for (std::size_t count = h.stage.effects.pendingCount(); count > 0; --count)
        h.stage.effects.deliver(h.choices.below(count));
}

/// Turns the only knob of a plugin.
void turnKnob(Hands& h) {
    if (const auto unit = h.stage.effects.lastUnitIfThere())
        unit->gain = static_cast<float>(h.choices.between(0.0, 2.0));
}

void giveEditor(Hands& h) {
    h.stage.windows.areClosed = !h.choices.oneIn(8);
    if (const auto unit = h.stage.effects.lastUnitIfThere()) unit->giveEditor(unit);
}

/// Deletes all presets instead if there are too many.
template <class Save>
void save(Hands& h, Save savePresets) {
    const session::AUComponentIdentity identity = h.component();
    const std::vector<plugins::NamedPreset> presets = h.engine().pluginPresets(identity);
    if (presets.size() < mostPresets) return savePresets();
    for (const plugins::NamedPreset& preset : presets)
        h.engine().deletePluginPreset(preset.id, identity);
}

template <class Use>
void usePreset(Hands& h, Use use) {
    const session::AUComponentIdentity identity = h.component();
    const std::vector<plugins::NamedPreset> presets = h.engine().pluginPresets(identity);
    if (!presets.empty()) use(h.choices.of(presets), identity);
}

constexpr Operation operations[] = {
    {"load a plugin", 6, false, load},
    {"deliver plugins", 4, false, deliver},
    {"change how plugins come", 1, false, changeDelivery},
    {"remove a plugin", 4, false, [](Hands& h) { h.engine().removePlugin(h.slot(), h.strip()); }},
    {"bypass a plugin", 3, false,
     [](Hands& h) { h.engine().setPluginBypassed(h.flag(), h.slot(), h.strip()); }},
    {"turn a knob", 3, false, turnKnob},
    {"open an editor", 2, false, [](Hands& h) { h.engine().openPluginEditor(h.slot(), h.strip()); }},
    {"give an editor", 2, false, giveEditor},
    {"restore plugins", 1, false, [](Hands& h) { h.engine().restorePluginsFromStrips(); }},
    {"copy a plugin", 2, false, [](Hands& h) { h.engine().copyPlugin(h.slot(), h.strip()); }},
    {"arm copy", 2, false, [](Hands& h) { h.engine().toggleCopyArm(); }},
    {"arm paste", 2, false, [](Hands& h) { h.engine().togglePasteArm(); }},
    {"disarm", 1, false, [](Hands& h) { h.engine().cancelClipboardArm(); }},
    {"click a slot", 4, false, [](Hands& h) { h.engine().handleClipboardClick(h.slot(), h.strip()); }},
    {"save a preset", 2, false,
     [](Hands& h) { save(h, [&h] { h.engine().savePluginPreset(h.text(), h.slot(), h.strip()); }); }},
    {"save presets", 1, false,
     [](Hands& h) { save(h, [&h] { h.engine().savePluginPresetOnAllChannels(h.text(), h.slot()); }); }},
    {"apply a preset", 2, false,
     [](Hands& h) {
         usePreset(h, [&h](const auto& preset, const auto&) {
             h.engine().applyPluginPreset(preset, h.slot(), h.strip());
         });
     }},
    {"delete a preset", 1, false,
     [](Hands& h) {
         usePreset(h, [&h](const auto& preset, const auto& identity) {
             h.engine().deletePluginPreset(preset.id, identity);
         });
     }},
};

} // namespace

std::span<const Operation> pluginOperations() {
    return operations;
}

} // namespace orvane::soak
