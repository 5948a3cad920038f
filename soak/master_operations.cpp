#include "soak/operation.h"

namespace orvane::soak {

namespace {

session::MasterOutputRouting someRouting(const Hands& h) {
    switch (h.choices.below(4)) {
    case 0:
        return session::master_output::None{};
    case 1:
        return session::master_output::Mono{h.channel()};
    default:
        return session::master_output::Stereo{h.channel(), h.channel()};
    }
}

constexpr Operation operations[] = {
    {"set the target", 3, false,
     [](Hands& h) { h.engine().setMasterTargetDB(h.choices.between(-60.0, 0.0)); }},
    {"move the lead fader", 3, false,
     [](Hands& h) { h.engine().setLeadGroupGainDB(h.choices.between(-60.0, 12.0)); }},
    {"move the backing fader", 3, false,
     [](Hands& h) { h.engine().setBackingGroupGainDB(h.choices.between(-60.0, 12.0)); }},
    {"set the reference noise", 3, false,
     [](Hands& h) { h.engine().setReferenceNoiseGain(h.flag() ? h.choices.between(0.0, 1.0) : 0.0); }},
    {"set the release", 3, false,
     [](Hands& h) { h.engine().setDuckerReleaseMs(h.choices.between(0.0, 3000.0)); }},
    {"route the master", 2, false, [](Hands& h) { h.engine().setMasterOutputRouting(someRouting(h)); }},
    {"set the master output", 2, false,
     [](Hands& h) {
         if (h.choices.oneIn(4)) return h.engine().setMasterOutputChannel(std::nullopt);
         h.engine().setMasterOutputChannel(h.channel());
     }},
    {"set master stereo", 2, false, [](Hands& h) { h.engine().setMasterStereo(h.flag()); }},
    {"set the master pair", 4, false, [](Hands& h) { h.engine().setMasterStereoPair(h.channel()); }},
};

} // namespace

std::span<const Operation> masterOperations() {
    return operations;
}

} // namespace orvane::soak
