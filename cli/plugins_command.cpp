#include "cli/command_line.h"

#include "cli/printing.h"
#include "platform/base/plain_text.h"
#include "platform/base/system_log.h"
#include "platform/lv2/lv2_unit_host.h"
#include "plugins/insert_components.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace orvane::cli {

namespace {

using Components = std::vector<platform::AVAudioUnitComponent>;

std::string componentTable(const Components& components) {
    std::string table = fmt::format("{:<36} {}\n", "maker", "name");
    for (const platform::AVAudioUnitComponent& component : components)
        table += fmt::format(
            "{:<36} {}\n", platform::plainText(component.manufacturerName),
            platform::plainText(component.name)
        );
    return table;
}

std::string componentsAsJSON(const Components& components) {
    nlohmann::json document = {{"plugins", nlohmann::json::array()}};
    for (const platform::AVAudioUnitComponent& component : components) {
        const session::AUComponentIdentity identity = plugins::identityOf(component);
        document["plugins"].push_back(
            {{"name", component.name},
             {"manufacturerName", component.manufacturerName},
             {"componentType", identity.componentType},
             {"componentSubType", identity.componentSubType},
             {"componentManufacturer", identity.componentManufacturer}}
        );
    }
    return jsonText(document);
}

int listPlugins(bool asJSON) {
    platform::SystemLog log(platform::standardErrorSink());
    platform::lv2::Lv2UnitHost host(
        log, platform::lv2::environmentSearchPath(), platform::lv2::effectCacheFile()
    );
    const Components components = plugins::availableInsertComponents(host);
    log.flush();
    return printResult(asJSON ? componentsAsJSON(components) : componentTable(components));
}

} // namespace

void addPluginsCommand(CLI::App& program, Action& action) {
    const auto asJSON = std::make_shared<bool>(false);
    CLI::App* const command =
        program.add_subcommand("plugins", "List the effects that can be inserted into a strip");
    command->footer(
        "Lists LV2 effects with one or two audio inputs and outputs, found in the folders of LV2_PATH. The "
        "JSON form has the codes that identify them in sessions."
    );
    command->add_flag("--json", *asJSON, "Print one JSON object");
    command->callback([asJSON, &action] { action = [asJSON] { return listPlugins(*asJSON); }; });
}

} // namespace orvane::cli
