#include "platform/lv2/editor_features.h"

#include <fmt/format.h>
#include <lv2/atom/atom.h>
#include <lv2/parameters/parameters.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace orvane::platform::lv2 {

namespace {

constexpr std::string_view editorFeatures[] = {
    LV2_URID__map, LV2_URID__unmap, LV2_LOG__log, LV2_OPTIONS__options, LV2_UI__parent, LV2_UI__resize,
    LV2_UI__portMap, LV2_UI__idleInterface, LV2_UI__noUserResize, LV2_UI__fixedSize,
    // These ask only for what the host does anyway.
    LV2_UI_PREFIX "makeResident", LV2_UI_PREFIX "makeSONameResident"};

constexpr std::string_view editorOptions[] = {
    LV2_PARAMETERS__sampleRate, LV2_UI__updateRate, LV2_UI__scaleFactor};

int resizeParent(LV2UI_Feature_Handle parent, int width, int height) {
    if (width < 1 || height < 1) return 1;
    static_cast<NativeEditorParent*>(parent)->setContentSize(width, height);
    return 0;
}

std::uint32_t portIndex(LV2UI_Feature_Handle description, const char* symbol) {
    if (symbol == nullptr) return LV2UI_INVALID_PORT_INDEX;
    const auto& roles = static_cast<const PluginDescription*>(description)->roles;
    const auto found = std::ranges::find(roles, symbol, &PortRole::symbol);
    return found == roles.end() ? LV2UI_INVALID_PORT_INDEX
                                : static_cast<std::uint32_t>(found - roles.begin());
}

} // namespace

EditorFeatures::EditorFeatures(
    HostServices& hostServices, const PluginDescription& description, NativeEditorParent& parent
)
    : common(hostServices, description.name),
      resize{&parent, resizeParent},
      // The interface takes handles as pointers to non-const; this one is only read.
      portMap{const_cast<PluginDescription*>(&description), portIndex},
      sampleRate(static_cast<float>(hostServices.sampleRate.load())),
      updateRate(NativeEditor::idleRate),
      scaleFactor(static_cast<float>(parent.scaleFactor())) {
    const auto option = [&](const char* uri, const float& value) {
        return makeOption(hostServices.urids, uri, LV2_ATOM__Float, value);
    };
    options = {
        option(LV2_PARAMETERS__sampleRate, sampleRate), option(LV2_UI__updateRate, updateRate),
        option(LV2_UI__scaleFactor, scaleFactor), noMoreOptions};
    features = {
        LV2_Feature{LV2_URID__map, &common.map}, LV2_Feature{LV2_URID__unmap, &common.unmap},
        LV2_Feature{LV2_LOG__log, &common.log}, LV2_Feature{LV2_OPTIONS__options, options.data()},
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface passes the window id as a pointer.
        LV2_Feature{LV2_UI__parent, reinterpret_cast<void*>(parent.nativeWindow())},
        LV2_Feature{LV2_UI__resize, &resize}, LV2_Feature{LV2_UI__portMap, &portMap},
        LV2_Feature{LV2_UI__idleInterface, nullptr}, LV2_Feature{LV2_UI__noUserResize, nullptr},
        LV2_Feature{LV2_UI__fixedSize, nullptr}};
    std::ranges::transform(features, pointers.begin(), [](const LV2_Feature& feature) { return &feature; });
    pointers.back() = nullptr;
}

std::optional<std::string> EditorFeatures::whyUnsupported(const EditorDescription& description) {
    if (const auto* const feature = firstUnsupported(description.requiredFeatures, editorFeatures))
        return fmt::format("it needs the LV2 feature {}, which is not supported", *feature);
    if (const auto* const option = firstUnsupported(description.requiredOptions, editorOptions))
        return fmt::format("it needs the LV2 option {}, which is not supported", *option);
    return std::nullopt;
}

} // namespace orvane::platform::lv2
