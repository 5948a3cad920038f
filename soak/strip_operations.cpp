#include "soak/operation.h"

namespace orvane::soak {

namespace {

constexpr Operation operations[] = {
    {"name a strip", 1, false, [](Hands& h) { h.engine().setName(h.strip(), h.text()); }},
    {"set an input", 4, false,
     [](Hands& h) {
         if (h.choices.oneIn(8)) return h.engine().setInputChannel(h.strip(), std::nullopt);
         h.engine().setInputChannel(h.strip(), h.channel());
     }},
    {"set an output", 4, false,
     [](Hands& h) {
         if (h.choices.oneIn(8)) return h.engine().setOutputChannel(h.strip(), std::nullopt);
         h.engine().setOutputChannel(h.strip(), h.channel());
     }},
    {"set stereo", 4, false, [](Hands& h) { h.engine().setStereo(h.strip(), h.flag()); }},
    {"set a stereo pair", 4, false, [](Hands& h) { h.engine().setStereoPair(h.strip(), h.channel()); }},
    {"pan", 6, false, [](Hands& h) { h.engine().setPan(h.strip(), h.choices.between(-1.25, 1.25)); }},
    {"set a trigger filter", 4, false,
     [](Hands& h) { h.engine().setGenderMode(h.strip(), h.choices.of(dsp::allGenderTriggerModes)); }},
    {"set a role", 4, false,
     [](Hands& h) { h.engine().setVocalRole(h.strip(), h.choices.of(dsp::allVocalRoles)); }},
    {"mute", 6, false, [](Hands& h) { h.engine().setMuted(h.strip(), h.choices.oneIn(4)); }},
    {"bypass", 4, false, [](Hands& h) { h.engine().setBypassed(h.strip(), h.choices.oneIn(4)); }},
    {"trim", 10, false, [](Hands& h) { h.engine().setTrim(h.strip(), h.choices.between(0.0, 4.0)); }},
    {"reset the routing", 1, false, [](Hands& h) { h.engine().resetRoutingOneToOne(); }},
    {"all outputs off", 1, false, [](Hands& h) { h.engine().allOutputsOff(); }},
};

} // namespace

std::span<const Operation> stripOperations() {
    return operations;
}

} // namespace orvane::soak
