#pragma once

#include "engine/session/au_component_identity.h"
#include "platform/base/result.h"
#include "platform/base/system_log.h"
#include "platform/base/uuid.h"
#include "platform/files/property_list.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvane::plugins {

/// A named setting of a plugin. A plain value.
struct NamedPreset {
    /// Made fresh with the preset.
    platform::Uuid id;
    /// As the user gave it; others may have the same.
    std::string name;
    /// The plugin's state.
    platform::PropertyList::Data data;

    bool operator==(const NamedPreset&) const = default;
};

/// A setting that is to become a named one. A plain value.
struct NewPreset {
    std::string name;
    platform::PropertyList::Data data;
    /// The plugin's.
    session::AUComponentIdentity identity;
};

/// The named settings of all plugins, independent of any session: in memory and, rewritten whole after every
/// change, in a file. A failure with the file is only logged: the presets in memory
/// stay, and so does the file that was there. Owned by the engine. Main thread.
class PluginPresetStore final {
  public:
    /// Reads what is stored in the user's application-support directory; what an earlier version stored there
    /// is taken over first, once. Without a directory presets are kept in memory alone. `systemLog` outlives
    /// the store.
    PluginPresetStore(
        const std::optional<std::filesystem::path>& applicationSupport, platform::SystemLog& systemLog
    );

    /// The presets of a component in the order they were added.
    [[nodiscard]] std::vector<NamedPreset> presets(const session::AUComponentIdentity& identity) const;

    /// Adds them in order as one change.
    void add(std::vector<NewPreset> presets);
    /// Unknown ids change nothing.
    void remove(const platform::Uuid& id, const session::AUComponentIdentity& identity);

  private:
    void load();
    [[nodiscard]] platform::Result<platform::Done> read();
    void save() const;
    [[nodiscard]] platform::Result<platform::Done> write() const;

    platform::SystemLog& log;
    std::map<session::AUComponentIdentity, std::vector<NamedPreset>> presetsByComponent;
    std::optional<std::filesystem::path> fileURL;
};

} // namespace orvane::plugins

template <>
struct std::hash<orvane::plugins::NamedPreset> {
    std::size_t operator()(const orvane::plugins::NamedPreset& preset) const noexcept {
        // Whatever is equal has the same id.
        return std::hash<orvane::platform::Uuid>()(preset.id);
    }
};
