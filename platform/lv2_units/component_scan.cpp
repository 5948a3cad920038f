#include "platform/lv2_units/component_scan.h"

#include "platform/lv2_units/log_category.h"
#include "platform/lv2_units/plugin_bundle.h"
#include "platform/lv2_units/plugin_description.h"
#include "platform/lv2_units/search_path.h"

#include <lv2/core/lv2.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <thread>
#include <tuple>

namespace orvane::platform::lv2_units {

namespace {

/// More readers than this are no faster.
constexpr unsigned mostReaders = 8;

/// One thread's part of a scan: every so-manieth plugin of each bundle. Bundles with hundreds of plugins are
/// shared out that way.
class Reader final {
  public:
    Reader(std::size_t readerIndex, std::size_t count, SystemLog& systemLog)
        : index(readerIndex), readerCount(count), log(systemLog) {}

    void read(const std::filesystem::path& folder) {
        PluginBundle bundle(folder);
        const auto plugins = bundle.plugins();
        for (std::size_t i = index; i < plugins.size(); i += readerCount)
            readPlugin(bundle, plugins[i], folder);
        if (!plugins.empty() || index != 0) return;
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

    std::size_t index;
    std::size_t readerCount;
    SystemLog& log;
};

/// The newest of each plugin; of equal versions the one whose bundle comes first.
std::vector<InstalledPlugin>
newestOfEach(std::vector<Reader>& readers, const std::vector<std::filesystem::path>& folders) {
    std::map<std::filesystem::path, std::size_t> places;
    for (std::size_t i = 0; i < folders.size(); ++i)
        places.emplace(folders[i], i);
    std::vector<InstalledPlugin> all;
    for (Reader& reader : readers)
        std::ranges::move(reader.found, std::back_inserter(all));
    std::ranges::sort(all, [&](const InstalledPlugin& a, const InstalledPlugin& b) {
        return std::tuple(std::string_view(a.uri), b.version, places.at(a.bundle))
               < std::tuple(std::string_view(b.uri), a.version, places.at(b.bundle));
    });
    const auto repeated = std::ranges::unique(all, {}, &InstalledPlugin::uri);
    all.erase(repeated.begin(), repeated.end());
    return all;
}

} // namespace

std::vector<InstalledPlugin> scanForEffects(std::string_view searchPath, SystemLog& log) {
    const auto folders = bundleFolders(searchPath);
    const std::size_t count = std::clamp(std::thread::hardware_concurrency(), 1U, mostReaders);
    std::vector<Reader> readers;
    for (std::size_t i = 0; i < count; ++i)
        readers.emplace_back(i, count, log);
    {
        std::vector<std::jthread> threads;
        for (Reader& reader : readers)
            threads.emplace_back([&reader, &folders] {
                for (const auto& folder : folders)
                    reader.read(folder);
            });
    }
    auto effects = newestOfEach(readers, folders);
    std::ranges::sort(effects, {}, [](const InstalledPlugin& plugin) {
        return std::tie(plugin.component.manufacturerName, plugin.component.name, plugin.uri);
    });
    return effects;
}

std::uint32_t stableCode(std::string_view text) {
    std::uint32_t hash = 2166136261;
    for (const char byte : text)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619;
    return hash;
}

} // namespace orvane::platform::lv2_units
