#include "platform/lv2/effect_scan.h"

#include "platform/lv2/bundle_report.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/scan_cache.h"
#include "platform/lv2/scan_program.h"
#include "platform/lv2/search_path.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

/// One scan of a search path.
class Scan final {
  public:
    Scan(SystemLog& systemLog, const ScanOptions& scanOptions)
        : log(systemLog), options(scanOptions), cache(options.cacheFile) {}

    void read(const std::filesystem::path& searchFolder) {
        const auto listing = ask(listArgument, searchFolder);
        const auto bundles = listing ? bundlesOf(listing.value()) : std::nullopt;
        if (!bundles)
            return leaveOut(searchFolder, listing ? "its list of bundles is damaged" : listing.error().why);
        for (const BundleStamp& bundle : *bundles)
            if (!options.stop.stop_requested()) read(bundle);
    }

    /// Returns the results and stores the cache for the next scan.
    InstalledEffects finish() {
        if (!options.stop.stop_requested()) cache.store();
        return std::move(found);
    }

  private:
    void read(const BundleStamp& bundle) {
        const BundleContents* const known = cache.find(bundle);
        if (known != nullptr) return take(bundle, *known);
        const auto report = ask(bundleArgument, bundle.folder);
        if (!report && !report.error().isPermanent) return leaveOut(bundle.folder, report.error().why);
        auto contents = report ? contentsOf(report.value(), bundle.folder) : std::nullopt;
        if (contents) return take(bundle, *std::move(contents));
        const std::string why = report ? "it describes more than a bundle may contain" : report.error().why;
        take(bundle, {.effects = {}, .leftOut = {leftOutSentence(bundle.folder.native(), why)}});
    }

    void take(const BundleStamp& bundle, BundleContents contents) {
        for (const std::string& sentence : contents.leftOut)
            log.post(LogLevel::error, logCategory, {sentence});
        std::ranges::copy(contents.effects, std::back_inserter(found.plugins));
        std::ranges::copy(contents.presets, std::back_inserter(found.presets));
        cache.keep(bundle, std::move(contents));
    }

    void leaveOut(const std::filesystem::path& folder, const std::string& why) {
        if (!options.stop.stop_requested())
            log.post(LogLevel::error, logCategory, {leftOutSentence(folder.native(), why)});
    }

    Result<PropertyList::Dictionary, ChildFailure>
    ask(const char* argument, const std::filesystem::path& folder) {
        const auto bytes =
            outputOfChild(scanProgram(), {argument, folder.native()}, options.limits, options.stop);
        if (!bytes) return bytes.error();
        auto report = propertyListWithData(bytes.value());
        if (!report) return ChildFailure{"its description is damaged", true};
        return std::move(report).value();
    }

    SystemLog& log;
    const ScanOptions& options;
    ScanCache cache;
    InstalledEffects found;
};

/// Keeps the newest version of each plugin; of equal versions the first one found.
void keepNewest(std::vector<InstalledPlugin>& plugins) {
    std::ranges::stable_sort(plugins, [](const InstalledPlugin& a, const InstalledPlugin& b) {
        return std::tie(a.uri, b.version) < std::tie(b.uri, a.version);
    });
    const auto repeated = std::ranges::unique(plugins, {}, &InstalledPlugin::uri);
    plugins.erase(repeated.begin(), repeated.end());
}

/// Keeps the first of equal presets of a plugin.
void keepFirst(std::vector<InstalledPreset>& presets) {
    const auto identity = [](const InstalledPreset& preset) {
        return std::tie(preset.pluginUri, preset.uri);
    };
    std::ranges::stable_sort(presets, {}, identity);
    const auto repeated = std::ranges::unique(presets, {}, identity);
    presets.erase(repeated.begin(), repeated.end());
}

} // namespace

InstalledEffects scanForEffects(std::string_view searchPath, SystemLog& log, const ScanOptions& options) {
    Scan scan(log, options);
    for (const auto& folder : searchFolders(searchPath))
        if (!options.stop.stop_requested()) scan.read(folder);
    InstalledEffects found = scan.finish();
    keepNewest(found.plugins);
    keepFirst(found.presets);
    std::ranges::sort(found.presets, {}, [](const InstalledPreset& preset) {
        return std::tie(preset.pluginUri, preset.bank, preset.name, preset.uri);
    });
    std::ranges::sort(found.plugins, {}, [](const InstalledPlugin& plugin) {
        return std::tie(plugin.component.manufacturerName, plugin.component.name, plugin.uri);
    });
    return found;
}

} // namespace orvane::platform::lv2
