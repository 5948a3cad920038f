#include "support/scripted_lv2.h"

#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>

#include <cstring>
#include <stdexcept>

// The scripted plugin's editor. It has no window: it records calls, and a test writes control values through
// it.

namespace {

using orvane::test::ScriptedEditorProbe;

ScriptedEditorProbe& probe() {
    return orvaneScriptedLv2Probe()->editor;
}

void throwIf(ScriptedEditorProbe::Throw place) {
    if (probe().throwsIn == place) throw std::runtime_error("as it was told to");
}

LV2UI_Handle instantiate(
    const LV2UI_Descriptor*, const char*, const char*, LV2UI_Write_Function write,
    LV2UI_Controller controller, LV2UI_Widget* widget, const LV2_Feature* const* features
) {
    ScriptedEditorProbe& told = probe();
    throwIf(ScriptedEditorProbe::Throw::instantiate);
    if (told.refuses) return nullptr;
    ++told.openCount;
    told.write = write;
    told.controller = controller;
    told.features.clear();
    for (; *features != nullptr; ++features)
        told.features[(*features)->URI] = (*features)->data;
    told.resize = static_cast<const LV2UI_Resize*>(told.features[LV2_UI__resize]);
    if (told.width != 0) told.resize->ui_resize(told.resize->handle, told.width, 100);
    const auto* const ports = static_cast<const LV2UI_Port_Map*>(told.features[LV2_UI__portMap]);
    told.gainPort = ports->port_index(ports->handle, "gain");
    *widget = &told;
    return &told;
}

void cleanup(LV2UI_Handle) {
    probe().pluginsAtClose.push_back(orvaneScriptedLv2Probe()->pluginCount.load());
    throwIf(ScriptedEditorProbe::Throw::cleanup);
}

void portEvent(
    LV2UI_Handle, std::uint32_t port, std::uint32_t size, std::uint32_t protocol, const void* buffer
) {
    throwIf(ScriptedEditorProbe::Throw::portEvent);
    if (protocol == 0 && size == sizeof(float)) {
        probe().values.emplace_back(port, *static_cast<const float*>(buffer));
    } else if (size == sizeof(LV2_Atom) + sizeof(std::int32_t)) {
        std::int32_t number = 0;
        std::memcpy(&number, static_cast<const LV2_Atom*>(buffer) + 1, sizeof number);
        probe().messages.emplace_back(port, number);
    }
}

int idle(LV2UI_Handle) {
    ++probe().idleCalls;
    throwIf(ScriptedEditorProbe::Throw::idle);
    return probe().wantsToClose ? 1 : 0;
}

const void* extensionData(const char* uri) {
    throwIf(ScriptedEditorProbe::Throw::extensionData);
    static const LV2UI_Idle_Interface idling{idle};
    return std::strcmp(uri, LV2_UI__idleInterface) == 0 ? &idling : nullptr;
}

constexpr LV2UI_Descriptor descriptor{
    "urn:orvane:test:editor", instantiate, cleanup, portEvent, extensionData};

} // namespace

extern "C" {

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(std::uint32_t index) {
    return index == 0 ? &descriptor : nullptr;
}
}
