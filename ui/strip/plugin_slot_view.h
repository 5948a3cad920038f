#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/au_component_identity.h"
#include "engine/session/plugin_slot.h"
#include "platform/base/uuid.h"
#include "plugins/plugin_load_state.h"
#include "ui/strip/installed_components.h"

#include <QAbstractButton>

#include <cstddef>
#include <optional>
#include <string>

class QMenu;

namespace orvane::ui {

/// One insert slot of a strip. Shows its plugin and is the place to pick, edit, copy and paste plugins. Main
/// thread.
class PluginSlotView final : public QAbstractButton {
  public:
    /// `mixerEngine` and `installedComponents` must outlive the view. The strip is the one at `strip` in the
    /// engine's list.
    PluginSlotView(
        engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents, std::size_t strip,
        std::size_t slot, QWidget* parent = nullptr
    );

    /// Shows the slot's current state in the engine.
    void refresh();

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void enterEvent(QEnterEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    /// The state of the slot.
    enum class Content { empty, notLive, loading, loaded, failed };
    /// The slot's plugin, as far as it is known.
    struct Plugin {
        std::optional<std::string> name = {};
        std::optional<session::AUComponentIdentity> component = {};
    };

    [[nodiscard]] const session::ChannelStrip* strip() const;
    [[nodiscard]] const session::PluginSlot* record() const;
    /// The live plugin if it differs from the record, else the record's.
    [[nodiscard]] Plugin plugin() const;
    [[nodiscard]] const plugins::PluginLoadState* loadState() const;
    [[nodiscard]] Content contentNow() const;
    [[nodiscard]] QString helpNow() const;
    /// Whether a click now copies or pastes.
    [[nodiscard]] bool isClipboardTarget() const;
    /// Shows in the pointer what a click does while the clipboard is armed.
    void showArmed();
    /// A further line with the delay that the plugin causes; empty if there is none.
    [[nodiscard]] QString latencyLine() const;
    void press();
    void openPicker();
    void addPresetActions(QMenu& menu);
    void addFactoryPresets(QMenu& menu);
    void askForPresetName();

    engine::MixerEngine& engine;
    const InstalledComponents& components;
    const std::size_t stripIndex;
    const std::size_t slotIndex;
    const platform::Uuid stripID;
    Content content = Content::empty;
    bool isBypassed = false;
    plugins::PluginClipboardArmState armed = plugins::PluginClipboardArmState::none;
};

} // namespace orvane::ui
