// The store starts with any preset file, and reads back what it wrote.

#include "fuzzer.h"
#include "plugins/plugin_preset_store.h"
#include "support/temporary_folder.h"

#include <string_view>

using namespace orvane;
using plugins::PluginPresetStore;

namespace {

/// The components that the seeds' presets belong to.
constexpr session::AUComponentIdentity components[] = {
    {0x61756678, 1, 1}, {0x61756678, 4294967295, 1}, {0, 0, 0}};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const test::TemporaryFolder folder(test::memoryFolder());
    std::filesystem::create_directories(folder / "ORVANE");
    folder.add("ORVANE/PluginPresets.json", {reinterpret_cast<const char*>(data), size});
    platform::SystemLog quiet([](const platform::LogLine&) {});
    PluginPresetStore first(folder / "", quiet);
    first.add({{"New", {1, 2, 3}, components[0]}});
    const PluginPresetStore second(folder / "", quiet);
    for (const session::AUComponentIdentity& component : components)
        fuzz::require(second.presets(component) == first.presets(component));
    for (const plugins::NamedPreset& preset : second.presets(components[0]))
        first.remove(preset.id, components[0]);
    fuzz::require(PluginPresetStore(folder / "", quiet).presets(components[0]).empty());
    return 0;
}
