#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/keys.h"

#include <QObject>

#include <array>
#include <functional>
#include <optional>
#include <vector>

class QAction;
class QString;

namespace orvane::ui {

/// The commands of the toolbar and the session menu. Main thread.
class MixerCommands final : public QObject {
  public:
    /// The actions of the commands that do not call the engine directly.
    struct Actions {
        std::function<void()> clearOutputs;
        std::function<void()> showSnapshots;
        std::function<void()> load;
        /// To the session's file, or to one that is asked for.
        std::function<void()> save;
        std::function<void()> saveAs;
        std::function<void()> showDeviceSettings;
        std::function<void()> showOutputOptions;
        std::function<void()> changeChannelCount;
    };

    /// The property of a command that the user is expected to press next.
    static constexpr const char* wantedProperty = "isWanted";

    /// `mixerEngine` must outlive them.
    MixerCommands(engine::MixerEngine& mixerEngine, const Actions& actions);

    /// The commands in the toolbar's order.
    [[nodiscard]] const std::vector<QAction*>& all() const { return commands; }
    /// The commands in the menu's order, with separators: all of them.
    [[nodiscard]] const std::vector<QAction*>& menu() const { return inMenu; }
    [[nodiscard]] QAction* save() const { return saveCommand; }
    [[nodiscard]] QAction* startStop() const { return commands.back(); }
    [[nodiscard]] QAction* devices() const { return deviceCommand; }
    /// Choosing the scene before or after the next one, and recalling the next one.
    [[nodiscard]] const std::array<QAction*, 3>& scenes() const { return sceneCommands; }

  private:
    QAction* make(
        const char* icon, const QString& label, std::optional<KeyCommand> key, const QString& help,
        std::function<void()> action
    );
    /// Adds a command to toolbar and menu.
    void
    add(const char* icon, const QString& label, std::optional<KeyCommand> key, const QString& help,
        std::function<void()> action);
    void addSeparator();
    void addRouting(const Actions& actions);
    void addFiles(const Actions& actions);
    void addAudio(const Actions& actions);
    void addScenes();
    void addClipboard();
    void showDevice();
    void showRunning();
    void showScenes();
    void showClipboard();

    engine::MixerEngine& engine;
    std::vector<QAction*> commands;
    std::vector<QAction*> inMenu;
    QAction* saveCommand = nullptr;
    QAction* deviceCommand = nullptr;
    QAction* undoPaste = nullptr;
    QAction* cancelArm = nullptr;
    std::array<QAction*, 3> sceneCommands = {};
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
