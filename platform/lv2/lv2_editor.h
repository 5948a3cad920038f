#pragma once

#include "platform/base/result.h"
#include "platform/effects/native_editor.h"
#include "platform/lv2/editor_features.h"
#include "platform/lv2/editor_messages.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/lv2_parameter.h"
#include "platform/lv2/plugin_description.h"

#include <lv2/ui/ui.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace orvane::platform::lv2 {

/// What an editor needs from its unit, which `unit` keeps alive.
struct EditedUnit {
    std::shared_ptr<AUAudioUnit> unit;
    /// Must have an editor.
    const PluginDescription& description;
    HostServices& services;
    std::span<const std::unique_ptr<Lv2Parameter>> parameters;
    EditorMessages& messages;
};

/// An open editor that the plugin provides. Main thread.
class Lv2Editor final : public NativeEditor, private EditorMessages::Listener {
  public:
    /// The error is the end of a sentence.
    static Result<std::unique_ptr<Lv2Editor>> open(EditedUnit unit, NativeEditorParent& parent);
    ~Lv2Editor() override;
    Lv2Editor(const Lv2Editor&) = delete;
    Lv2Editor& operator=(const Lv2Editor&) = delete;

    [[nodiscard]] std::uintptr_t nativeWindow() const override {
        return reinterpret_cast<std::uintptr_t>(widget);
    }
    [[nodiscard]] bool hasFixedSize() const override { return edited.description.editor->hasFixedSize; }
    bool idle() override;

  private:
    Lv2Editor(EditedUnit unit, const LV2UI_Descriptor& found, NativeEditorParent& parent);

    /// Calls into the editor, unless an earlier call failed.
    template <class Call>
    void callEditor(const Call& call);
    void instantiate();
    void showControls();
    /// Called by the editor. Any thread: editors may have threads of their own.
    static void write(
        LV2UI_Controller editor, std::uint32_t port, std::uint32_t size, std::uint32_t protocol,
        const void* buffer
    );
    void writeControl(std::uint32_t port, float value);
    void messageArrived(std::uint32_t port, const LV2_Atom& atom) override;

    EditedUnit edited;
    const LV2UI_Descriptor& descriptor;
    EditorFeatures features;
    LV2_URID eventTransfer;
    /// By port index; null for ports that are not parameters.
    std::vector<Lv2Parameter*> parameterAt;
    /// By port index: the bits of the value that the editor shows; absent before the first.
    std::vector<std::atomic<std::optional<std::uint32_t>>> shown;
    LV2UI_Handle handle = nullptr;
    LV2UI_Widget widget = nullptr;
    const LV2UI_Idle_Interface* idleInterface = nullptr;
    /// The editor has thrown: it may only be closed.
    bool hasFailed = false;
};

} // namespace orvane::platform::lv2
