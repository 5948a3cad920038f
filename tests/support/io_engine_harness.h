#pragma once

#include "audio/core_audio_io_engine.h"
#include "support/scripted_audio_hardware.h"

namespace orvane::test {

/// Hardware with one device, number 7 of 3 inputs and 2 outputs, and what an engine for it is to be.
struct IOEngineHarness {
    IOEngineHarness() { hardware.devices = {{.id = 7, .inputStreams = {3}, .outputStreams = {2}}}; }

    ScriptedAudioHardware hardware;
    audio::CoreAudioIOEngine::Configuration configuration{
        .sampleRate = 44100.0,
        .deviceID = 7,
        .inputChannelCount = 3,
        .outputChannelCount = 2,
        .framesPerSlice = 256};
};

} // namespace orvane::test
