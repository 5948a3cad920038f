#include "soak/random_operator.h"

#include "plugins/insert_components.h"

#include <utility>

namespace orvane::soak {

platform::Uuid Hands::strip() const {
    const std::vector<session::ChannelStrip>& strips = state().channelStrips.get();
    const std::size_t chosen = choices.below(strips.size() + (choices.oneIn(64) ? 1 : 0));
    return chosen < strips.size() ? strips[chosen].id : platform::Uuid{};
}

std::string Hands::text() const {
    constexpr const char* texts[] = {"", "Ch 1", "Größe", "🎤", "a/b\\c\"", "\xFF\xFE", "two\nlines"};
    return choices.of(texts);
}

session::AUComponentIdentity Hands::component() const {
    return plugins::identityOf(choices.of(stage.effects.components));
}

RandomOperator::RandomOperator(Stage& workedOn, Choices& decisions, Manner mannerOfWork)
    : manner(mannerOfWork), hands{workedOn, decisions} {
    for (const auto all :
         {stripOperations(), masterOperations(), sceneOperations(), pluginOperations(), machineOperations()})
        for (const Operation& operation : all)
            if (manner == Manner::careless || !operation.interrupts)
                repertoire.insert(repertoire.end(), operation.weight, &operation);
}

std::string_view RandomOperator::act() {
    ++done;
    if (const auto before = std::exchange(hands.before, std::nullopt)) {
        hands.engine().applyDocument(*before);
        hands.stage.settle();
        return "bring the show back";
    }
    const Operation& operation = next();
    operation.run(hands);
    hands.stage.settle();
    return operation.name;
}

void RandomOperator::clearDesk() {
    engine::MixerEngine& engine = hands.engine();
    if (manner == Manner::careless) makeFreshMixer();
    for (const session::ChannelStrip& strip : std::vector(hands.state().channelStrips.get()))
        for (std::size_t slot = 0; slot < session::pluginSlotsPerChannel; ++slot)
            engine.removePlugin(slot, strip.id);
    while (!hands.state().snapshots.get().empty()) {
        engine.selectSnapshot(0);
        engine.deleteSnapshot();
    }
    for (std::size_t i = 0; i < engine::SnapshotList::mostUndos; ++i) {
        engine.newSnapshot();
        engine.deleteSnapshot();
    }
    for (const platform::AVAudioUnitComponent& component : hands.stage.effects.components)
        for (const auto& preset : engine.pluginPresets(plugins::identityOf(component)))
            engine.deletePluginPreset(preset.id, plugins::identityOf(component));
    hands.sessions.clear();
    hands.before.reset();
    hands.stage.effects.deliverAll();
    hands.stage.settle();
}

void RandomOperator::makeFreshMixer() {
    engine::MixerEngine& engine = hands.engine();
    engine.applyDocument(
        {.channels = session::settingsOf(session::makeDefaultStrips(hands.stage.shape.strips)),
         .master = {.masterOutputRouting = session::master_output::Stereo{0, 1}},
         .bufferSize = hands.stage.shape.bufferSize}
    );
    engine.resetRoutingOneToOne();
    engine.start();
}

const Operation& RandomOperator::next() const {
    return *repertoire[hands.choices.below(repertoire.size())];
}

} // namespace orvane::soak
