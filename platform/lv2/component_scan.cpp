#include "platform/lv2/component_scan.h"

#include "platform/lv2/factory_presets.h"
#include "platform/lv2/host_features.h"
#include "platform/lv2/plugin_bundle.h"
#include "platform/lv2/plugin_description.h"

#include <fmt/format.h>
#include <lv2/core/lv2.h>

#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

/// Why the library of a plugin cannot be loaded, as the end of a sentence; absent if it can.
std::optional<std::string> libraryProblem(const std::filesystem::path& library) {
    std::error_code ignored;
    if (library.empty()) return "it names no library";
    if (std::filesystem::is_regular_file(library, ignored)) return std::nullopt;
    return fmt::format("its library {} is missing or not a file", library.native());
}

/// Reads a bundle and keeps the effects in it.
class Reader final {
  public:
    void read(const std::filesystem::path& folder) {
        PluginBundle bundle(folder);
        const auto plugins = bundle.plugins();
        for (const LilvPlugin* const plugin : plugins)
            readPlugin(bundle, plugin, folder);
        contents.presets = presetsIn(bundle, folder);
        if (!plugins.empty()) return;
        if (const auto problem = manifestProblem(folder)) skip(folder.native(), *problem);
    }

    BundleContents contents;

  private:
    void readPlugin(PluginBundle& bundle, const LilvPlugin* plugin, const std::filesystem::path& folder) {
        const LilvNode* const uriNode = lilv_plugin_get_uri(plugin);
        const std::string uri = textOf(uriNode);
        const std::string name = textOf(NodeHandle(lilv_plugin_get_name(plugin)).get());
        if (name.empty()) return skip(uri, "it has no name");
        const auto roles = portRoles(bundle, plugin);
        if (!roles) return skip(uri, roles.error().description);
        const auto described = describe(bundle, plugin);
        if (!described || !isHostable(described.value())) return;
        if (const auto problem = libraryProblem(described.value().libraryPath)) return skip(uri, *problem);

        const std::string maker = textOf(NodeHandle(lilv_plugin_get_author_name(plugin)).get());
        contents.effects.push_back(
            {{effectDescription(uri, maker), name, maker},
             uri,
             folder,
             {bundle.integer(uriNode, LV2_CORE__minorVersion).value_or(0),
              bundle.integer(uriNode, LV2_CORE__microVersion).value_or(0)}}
        );
    }

    void skip(std::string_view what, std::string_view why) {
        contents.leftOut.push_back(leftOutSentence(what, why));
    }
};

} // namespace

BundleContents readBundle(const std::filesystem::path& folder) {
    Reader reader;
    reader.read(folder);
    return std::move(reader.contents);
}

std::string leftOutSentence(std::string_view what, std::string_view why) {
    return fmt::format("Left out {}: {}.", what, why);
}

AudioComponentDescription effectDescription(std::string_view uri, std::string_view maker) {
    return {
        .componentType = kAudioUnitType_Effect,
        .componentSubType = stableCode(uri),
        .componentManufacturer = stableCode(maker)};
}

std::uint32_t stableCode(std::string_view text) {
    std::uint32_t hash = 2166136261;
    for (const char byte : text)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619;
    return hash;
}

} // namespace orvane::platform::lv2
