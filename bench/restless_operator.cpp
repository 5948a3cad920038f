#include "restless_operator.h"

#include <algorithm>
#include <chrono>

namespace orvane::bench {

using namespace std::chrono_literals;

namespace {

constexpr std::size_t scenes = 4;

} // namespace

RestlessOperator::RestlessOperator(BenchMixer& benchMixer, std::string_view plugin) : mixer(benchMixer) {
    const auto installed = mixer.engine.availableInsertComponents();
    component = *std::ranges::find(installed, plugin, &platform::AVAudioUnitComponent::name);
    for (const session::ChannelStrip& strip : mixer.engine.state().channelStrips.get())
        strips.push_back(strip.id);
    for (std::size_t scene = 0; scene < scenes; ++scene) {
        for (int i = 0; i < 100; ++i)
            edit();
        mixer.engine.newSnapshot();
    }
    timers.push_back(mixer.loop.repeat(1ms, [this] { edit(); }));
    timers.push_back(mixer.loop.repeat(100ms, [this] { recall(); }));
    timers.push_back(mixer.loop.repeat(500ms, [this] { reload(); }));
}

void RestlessOperator::edit() {
    ++editCount;
    if (below(4) == 0)
        editMaster();
    else
        editStrip();
}

void RestlessOperator::editStrip() {
    engine::MixerEngine& engine = mixer.engine;
    const platform::Uuid& strip = anyStrip();
    const auto channel = static_cast<std::int64_t>(below(strips.size()));
    switch (below(10)) {
    case 0:
        return engine.setTrim(strip, between(0.0, 2.0));
    case 1:
        return engine.setMuted(strip, below(8) == 0);
    case 2:
        return engine.setBypassed(strip, below(8) == 0);
    case 3:
        return engine.setPan(strip, between(-1.0, 1.0));
    case 4:
        return engine.setGenderMode(strip, dsp::allGenderTriggerModes[below(3)]);
    case 5:
        return engine.setVocalRole(strip, dsp::allVocalRoles[below(3)]);
    case 6:
        return engine.setInputChannel(strip, channel);
    case 7:
        return engine.setStereo(strip, below(2) == 0);
    case 8:
        return engine.setStereoPair(strip, channel / 2 * 2);
    default:
        return engine.setPluginBypassed(below(4) == 0, 0, strip);
    }
}

void RestlessOperator::editMaster() {
    engine::MixerEngine& engine = mixer.engine;
    switch (below(6)) {
    case 0:
        return engine.setMasterTargetDB(between(-30.0, 0.0));
    case 1:
        return engine.setLeadGroupGainDB(between(-20.0, 10.0));
    case 2:
        return engine.setBackingGroupGainDB(between(-20.0, 10.0));
    case 3:
        return engine.setReferenceNoiseGain(between(0.0, 0.2));
    case 4:
        return engine.setDuckerReleaseMs(between(50.0, 2000.0));
    default:
        return engine.setMasterStereoPair(static_cast<std::int64_t>(below(strips.size() / 2) * 2));
    }
}

void RestlessOperator::recall() {
    ++recallCount;
    mixer.engine.recallSnapshot(static_cast<std::int64_t>(below(scenes)));
}

void RestlessOperator::reload() {
    ++loadCount;
    const platform::Uuid& strip = anyStrip();
    mixer.engine.removePlugin(0, strip);
    mixer.engine.loadPlugin(component, 0, strip);
}

double RestlessOperator::between(double low, double high) {
    return std::uniform_real_distribution(low, high)(random);
}

std::size_t RestlessOperator::below(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
}

const platform::Uuid& RestlessOperator::anyStrip() {
    return strips[below(strips.size())];
}

} // namespace orvane::bench
