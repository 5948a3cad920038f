#pragma once

#include "platform/effects/audio_unit_host.h"
#include "plugins/insert_render_context.h"

#include <memory>

namespace orvane::plugins {

/// A live plugin. Owned by the insert rack; the real-time tables share its context, and must have let go of
/// it before this goes. Main thread.
struct LoadedInsertPlugin {
    /// What it was made from.
    platform::AVAudioUnitComponent component;
    std::shared_ptr<platform::AUAudioUnit> avAudioUnit;
    std::shared_ptr<InsertRenderContext> renderContext = nullptr;
    /// What it is set up for, in Hz; 0 where it is not.
    double sampleRate = 0.0;
    /// Fetched when the editor is first opened, and kept.
    std::shared_ptr<platform::AUViewController> editorViewController = nullptr;
};

} // namespace orvane::plugins
