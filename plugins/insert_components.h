#pragma once

#include "engine/session/au_component_identity.h"
#include "platform/effects/audio_unit_host.h"

#include <span>
#include <vector>

namespace orvane::plugins {

/// The codes by which a component is found again.
session::AUComponentIdentity identityOf(const platform::AVAudioUnitComponent& component);

/// The installed effects and music effects, each identity once (the host's first), by maker and then by name
/// as the user's language sorts them, whatever their case. Any thread but the audio ones.
std::vector<platform::AVAudioUnitComponent> availableInsertComponents(platform::AudioUnitHost& host);

/// Returns the first of `installed` that has the identity, or else its type and sub-type: what differs is how
/// its maker is written. Null if there is none. Any thread but the audio ones.
const platform::AVAudioUnitComponent* componentFor(
    const session::AUComponentIdentity& identity, std::span<const platform::AVAudioUnitComponent> installed
);

} // namespace orvane::plugins
