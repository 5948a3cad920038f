#pragma once

#include "platform/effects/native_editor.h"
#include "platform/lv2/common_features.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/plugin_description.h"

#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace orvane::platform::lv2 {

/// The features that a plugin's own editor is offered. Lives as long as the editor; stays where it is, for
/// the editor keeps pointers into it. Nothing of the running plugin is offered. Main thread.
class EditorFeatures final {
  public:
    /// All outlive the features.
    EditorFeatures(
        HostServices& hostServices, const PluginDescription& description, NativeEditorParent& parent
    );
    EditorFeatures(const EditorFeatures&) = delete;
    EditorFeatures& operator=(const EditorFeatures&) = delete;

    /// As editors take them: pointers, the last one null.
    [[nodiscard]] const LV2_Feature* const* list() const { return pointers.data(); }

    /// Why an editor that must have something else cannot be opened, as the end of a sentence.
    static std::optional<std::string> whyUnsupported(const EditorDescription& description);

  private:
    static constexpr std::size_t featureCount = 10;

    CommonFeatures common;
    LV2UI_Resize resize;
    LV2UI_Port_Map portMap;
    float sampleRate;
    float updateRate;
    float scaleFactor;
    std::array<LV2_Options_Option, 4> options;
    std::array<LV2_Feature, featureCount> features;
    std::array<const LV2_Feature*, featureCount + 1> pointers;
};

} // namespace orvane::platform::lv2
