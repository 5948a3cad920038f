#pragma once

#include "dsp/channel_automix_settings.h"
#include "engine/session/channel_strip.h"
#include "engine/session/master_output_routing.h"
#include "engine/session/mixer_document_data.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace orvane::cli {

/// The block lengths that the mixer offers, in frames.
inline constexpr std::int64_t bufferSizes[] = {32, 64, 96, 128, 192, 256, 512, 768, 1024, 2048};

/// Whether `bufferSize` is one of them.
bool isBufferSize(std::int64_t bufferSize);

/// All that a mix is set up with, with the values of a fresh mixer. A plain value.
struct MixerSetup {
    std::vector<session::ChannelStrip> strips;
    double masterTargetDB = -10.0;
    double leadGroupGainDB = 0.0;
    double backingGroupGainDB = 0.0;
    double referenceNoiseGain = 0.0;
    double duckerReleaseMs = 400.0;
    session::MasterOutputRouting masterOutputRouting = session::master_output::None{};
    std::int64_t bufferSize = 512;

    /// A mix of `stripCount` strips that hear the inputs one to one and go to the master bus alone, which
    /// goes to the first two outputs.
    static MixerSetup oneToOne(std::size_t stripCount, std::size_t inputCount);

    /// A fresh mix of `stripCount` strips into which `document` is loaded; strips beyond the document's stay
    /// fresh, and a buffer size that the mixer does not offer is passed over.
    static MixerSetup loaded(const session::MixerDocumentData& document, std::size_t stripCount);

    /// One more than the highest output that a strip or the master bus goes to; 0 if nothing goes anywhere.
    [[nodiscard]] std::uint64_t routedOutputs() const;

    /// Takes the master bus off outputs beyond `outputCount`; true if it was on one.
    bool resetMissingMasterOutput(std::size_t outputCount);
};

/// What the automix is told about a strip.
dsp::ChannelAutomixSettings automixSettings(const session::ChannelStrip& strip);

} // namespace orvane::cli
