#include "platform/lv2_units/component_scan.h"

#include "platform/lv2_units/log_category.h"
#include "platform/lv2_units/plugin_bundle.h"
#include "platform/lv2_units/plugin_description.h"
#include "platform/lv2_units/search_path.h"

#include <lv2/core/lv2.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace orvane::platform::lv2_units {

namespace {

/// Reads bundles and keeps the effects in them.
class Reader final {
  public:
    explicit Reader(SystemLog& systemLog) : log(systemLog) {}

    void read(const std::filesystem::path& folder) {
        PluginBundle bundle(folder);
        const auto plugins = bundle.plugins();
        for (const LilvPlugin* const plugin : plugins)
            readPlugin(bundle, plugin, folder);
        if (!plugins.empty()) return;
        if (const auto problem = manifestProblem(folder)) skip(folder.native(), *problem);
    }

    std::vector<InstalledPlugin> found;

  private:
    void readPlugin(PluginBundle& bundle, const LilvPlugin* plugin, const std::filesystem::path& folder) {
        const LilvNode* const uriNode = lilv_plugin_get_uri(plugin);
        const std::string uri = textOf(uriNode);
        const std::string name = textOf(NodeHandle(lilv_plugin_get_name(plugin)).get());
        if (name.empty()) return skip(uri, "it has no name");
        const auto roles = portRoles(bundle, plugin);
        if (!roles) return skip(uri, roles.error().description);
        const MainAudioPorts audio = mainAudioPorts(roles.value());
        if (audio.inputs.empty() || audio.outputs.empty()) return;

        const std::string maker = textOf(NodeHandle(lilv_plugin_get_author_name(plugin)).get());
        const AudioComponentDescription description{
            .componentType = kAudioUnitType_Effect,
            .componentSubType = stableCode(uri),
            .componentManufacturer = stableCode(maker)};
        found.push_back(
            {{description, name, maker},
             uri,
             folder,
             {bundle.integer(uriNode, LV2_CORE__minorVersion).value_or(0),
              bundle.integer(uriNode, LV2_CORE__microVersion).value_or(0)}}
        );
    }

    void skip(std::string_view what, std::string_view why) {
        log.post(LogLevel::error, logCategory, {"Left out ", what, ": ", why, "."});
    }

    SystemLog& log;
};

/// The newest of each plugin; of equal versions the one that was found first.
void keepNewest(std::vector<InstalledPlugin>& plugins) {
    std::ranges::stable_sort(plugins, [](const InstalledPlugin& a, const InstalledPlugin& b) {
        return std::tie(a.uri, b.version) < std::tie(b.uri, a.version);
    });
    const auto repeated = std::ranges::unique(plugins, {}, &InstalledPlugin::uri);
    plugins.erase(repeated.begin(), repeated.end());
}

} // namespace

std::vector<InstalledPlugin> scanForEffects(std::string_view searchPath, SystemLog& log) {
    Reader reader(log);
    for (const auto& folder : bundleFolders(searchPath))
        reader.read(folder);
    keepNewest(reader.found);
    std::ranges::sort(reader.found, {}, [](const InstalledPlugin& plugin) {
        return std::tie(plugin.component.manufacturerName, plugin.component.name, plugin.uri);
    });
    return std::move(reader.found);
}

std::uint32_t stableCode(std::string_view text) {
    std::uint32_t hash = 2166136261;
    for (const char byte : text)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619;
    return hash;
}

} // namespace orvane::platform::lv2_units
