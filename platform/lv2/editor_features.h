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

/// The features offered to a plugin's own editor; none of them gives access to the running plugin. Must
/// outlive the editor, which keeps pointers into it; not movable. Main thread.
class EditorFeatures final {
  public:
    /// All arguments must outlive the features.
    EditorFeatures(
        HostServices& hostServices, const PluginDescription& description, NativeEditorParent& parent
    );
    EditorFeatures(const EditorFeatures&) = delete;
    EditorFeatures& operator=(const EditorFeatures&) = delete;

    /// The null-terminated list that editors expect.
    [[nodiscard]] const LV2_Feature* const* list() const { return pointers.data(); }

    /// Why an editor cannot be opened, as the end of a sentence; absent if all its requirements are
    /// supported.
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
