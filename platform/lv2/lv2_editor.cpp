#include "platform/lv2/lv2_editor.h"

#include "platform/lv2/host_services.h"
#include "platform/lv2/shared_library.h"

#include <fmt/format.h>

#include <bit>
#include <cstring>
#include <string>
#include <utility>

namespace orvane::platform::lv2 {

Result<std::unique_ptr<Lv2Editor>> Lv2Editor::open(EditedUnit unit, NativeEditorParent& parent) {
    const EditorDescription& description = *unit.description.editor;
    if (auto reason = EditorFeatures::whyUnsupported(description)) return Error{*std::move(reason)};
    const auto library = SharedLibrary::open(description.libraryPath);
    if (!library) return library.error();
    const auto getDescriptor = library.value().function<LV2UI_DescriptorFunction>("lv2ui_descriptor");
    const LV2UI_Descriptor* const found =
        getDescriptor == nullptr ? nullptr : findDescriptor(description.uri, getDescriptor);
    if (found == nullptr) return Error{fmt::format("{} does not have it", description.libraryPath)};
    std::unique_ptr<Lv2Editor> editor(new Lv2Editor(std::move(unit), *found, parent));
    editor->instantiate();
    if (editor->hasFailed) return Error{"it failed"};
    if (editor->handle == nullptr) return Error{"the plugin refuses to open it"};
    return editor;
}

Lv2Editor::Lv2Editor(EditedUnit unit, const LV2UI_Descriptor& found, NativeEditorParent& parent)
    : edited(std::move(unit)),
      descriptor(found),
      features(edited.services, edited.description, parent),
      eventTransfer(edited.services.urids.map(LV2_ATOM__eventTransfer)),
      parameterAt(edited.description.roles.size()),
      shown(edited.description.roles.size()) {
    for (const auto& parameter : edited.parameters)
        parameterAt[parameter->port()] = parameter.get();
    edited.messages.add(*this);
}

Lv2Editor::~Lv2Editor() {
    if (handle != nullptr && descriptor.cleanup != nullptr)
        callPlugin([this] { descriptor.cleanup(handle); });
    edited.messages.remove(*this);
}

template <class Call>
void Lv2Editor::callEditor(const Call& call) {
    if (!hasFailed) hasFailed = !callPlugin(call);
}

void Lv2Editor::instantiate() {
    callEditor([this] {
        handle = descriptor.instantiate(
            &descriptor, edited.description.uri.c_str(), edited.description.editor->bundlePath.c_str(), write,
            this, &widget, features.list()
        );
        if (handle == nullptr || descriptor.extension_data == nullptr) return;
        idleInterface =
            static_cast<const LV2UI_Idle_Interface*>(descriptor.extension_data(LV2_UI__idleInterface));
    });
    if (handle != nullptr) showControls();
}

bool Lv2Editor::idle() {
    edited.messages.distribute();
    showControls();
    bool staysOpen = true;
    callEditor([&] {
        if (idleInterface != nullptr && idleInterface->idle != nullptr)
            staysOpen = idleInterface->idle(handle) == 0;
    });
    if (!hasFailed) return staysOpen;
    edited.services.log.post(
        LogLevel::error, logCategory,
        {"The editor of \"", edited.description.name, "\" failed; it is closed."}
    );
    return false;
}

/// Also corrects an editor whose own value the parameter did not accept unchanged.
void Lv2Editor::showControls() {
    if (descriptor.port_event == nullptr) return;
    for (std::uint32_t port = 0; port < shown.size(); ++port) {
        if (edited.description.roles[port].kind != PortKind::control) continue;
        const Lv2Parameter* const parameter = parameterAt[port];
        const float value = parameter == nullptr ? edited.description.heldValues[port] : parameter->value();
        const auto bits = std::bit_cast<std::uint32_t>(value);
        if (shown[port].load() == bits) continue;
        shown[port] = bits;
        callEditor([&] { descriptor.port_event(handle, port, sizeof value, 0, &value); });
    }
}

void Lv2Editor::write(
    LV2UI_Controller editor, std::uint32_t port, std::uint32_t size, std::uint32_t protocol,
    const void* buffer
) {
    auto& self = *static_cast<Lv2Editor*>(editor);
    if (buffer == nullptr || port >= self.shown.size()) return;
    const PortRole& role = self.edited.description.roles[port];
    if (protocol == 0 && role.kind == PortKind::control && size == sizeof(float)) {
        float value = 0.0F;
        std::memcpy(&value, buffer, sizeof value);
        self.writeControl(port, value);
    } else if (protocol == self.eventTransfer && role.kind == PortKind::atom && role.isInput && size >= sizeof(LV2_Atom)) {
        const auto& atom = *static_cast<const LV2_Atom*>(buffer);
        if (atom.size <= size - sizeof atom) self.edited.messages.sendToPlugin(port, atom);
    }
}

void Lv2Editor::writeControl(std::uint32_t port, float value) {
    shown[port] = std::bit_cast<std::uint32_t>(value);
    if (Lv2Parameter* const parameter = parameterAt[port]) parameter->setValue(value);
}

void Lv2Editor::messageArrived(std::uint32_t port, const LV2_Atom& atom) {
    if (descriptor.port_event == nullptr || handle == nullptr) return;
    callEditor([&] {
        const auto size = static_cast<std::uint32_t>(sizeof atom + atom.size);
        descriptor.port_event(handle, port, size, eventTransfer, &atom);
    });
}

} // namespace orvane::platform::lv2
