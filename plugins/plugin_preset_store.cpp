#include "plugins/plugin_preset_store.h"

#include "engine/session/document_keys.h"
#include "engine/session/document_limits.h"
#include "engine/session/document_tree.h"
#include "engine/session/document_values.h"
#include "platform/base/base64.h"
#include "platform/files/atomic_file.h"
#include "platform/files/read_file.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

namespace orvane::plugins {

namespace {

using platform::Done;
using platform::Result;
using session::AUComponentIdentity;
using session::DocumentNode;

constexpr std::string_view presetLogCategory = "PluginPresets";
constexpr const char* folderName = "ORVANE";
constexpr const char* earlierFolderName = "Dravonel";
constexpr const char* fileName = "PluginPresets.json";

namespace key {
constexpr std::string_view data = "data";
constexpr std::string_view entries = "entries";
constexpr std::string_view identity = "identity";
constexpr std::string_view presets = "presets";
} // namespace key

bool isKnown(std::string_view word) {
    constexpr std::array all = {
        key::data,
        key::entries,
        key::identity,
        key::presets,
        session::key::componentManufacturer,
        session::key::componentSubType,
        session::key::componentType,
        session::key::id,
        session::key::name};
    return std::ranges::find(all, word) != all.end();
}

struct Entry {
    AUComponentIdentity identity;
    std::vector<NamedPreset> presets;
};

NamedPreset readPreset(const DocumentNode& node) {
    return {
        .id = session::readUuid(node.required(session::key::id)),
        .name = std::string(node.required(session::key::name).text()),
        .data = session::readBytes(node.required(key::data))};
}

Entry readEntry(const DocumentNode& node) {
    return {
        .identity = session::readComponent(node.required(key::identity)),
        .presets = node.required(key::presets).list(readPreset)};
}

void write(session::JSONWriter& to, const NamedPreset& preset) {
    to.beginObject();
    to.key(key::data);
    to.plainText(platform::encodeBase64(preset.data));
    to.member(session::key::id, preset.id.toString());
    to.member(session::key::name, preset.name);
    to.endObject();
}

void write(
    session::JSONWriter& to, const AUComponentIdentity& identity, const std::vector<NamedPreset>& presets
) {
    to.beginObject();
    to.key(key::identity);
    session::writeComponent(to, identity);
    to.key(key::presets);
    to.beginArray();
    for (const NamedPreset& preset : presets)
        write(to, preset);
    to.endArray();
    to.endObject();
}

/// Makes the file of an earlier version the store's own unless there is one.
void migrate(const std::filesystem::path& earlier, const std::filesystem::path& file) {
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored)) return;
    const auto text = platform::readFile(earlier, session::DocumentLimits{}.size);
    if (text) (void)platform::writeFileAtomically(file, std::as_bytes(std::span(text.value())));
}

} // namespace

PluginPresetStore::PluginPresetStore(
    const std::optional<std::filesystem::path>& applicationSupport, platform::SystemLog& systemLog
)
    : log(systemLog) {
    if (!applicationSupport) return;
    const std::filesystem::path folder = *applicationSupport / folderName;
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    fileURL = folder / fileName;
    migrate(*applicationSupport / earlierFolderName / fileName, *fileURL);
    load();
}

std::vector<NamedPreset> PluginPresetStore::presets(const AUComponentIdentity& identity) const {
    const auto found = presetsByComponent.find(identity);
    return found == presetsByComponent.end() ? std::vector<NamedPreset>{} : found->second;
}

void PluginPresetStore::add(std::vector<NewPreset> presets) {
    for (NewPreset& preset : presets)
        presetsByComponent[preset.identity].push_back(
            {platform::Uuid::random(), std::move(preset.name), std::move(preset.data)}
        );
    if (!presets.empty()) save();
}

void PluginPresetStore::remove(const platform::Uuid& id, const AUComponentIdentity& identity) {
    if (const auto found = presetsByComponent.find(identity); found != presetsByComponent.end())
        std::erase_if(found->second, [&id](const NamedPreset& preset) { return preset.id == id; });
    save();
}

void PluginPresetStore::load() {
    std::error_code unknown;
    if (!std::filesystem::exists(*fileURL, unknown) && !unknown) return;
    if (const auto done = read(); !done)
        log.post(
            platform::LogLevel::error, presetLogCategory,
            {"The plugin presets could not be read, and the next change replaces them: ",
             done.error().description}
        );
}

Result<Done> PluginPresetStore::read() {
    const auto text = platform::readFile(*fileURL, session::DocumentLimits{}.size);
    if (!text) return text.error();
    const auto tree = session::parseDocumentTree(text.value(), isKnown);
    if (!tree) return tree.error();
    std::optional<platform::Error> fault;
    auto entries = DocumentNode(tree.value().root, fault).required(key::entries).list(readEntry);
    if (fault) return *fault;
    for (Entry& entry : entries)
        presetsByComponent[entry.identity] = std::move(entry.presets);
    return Done{};
}

void PluginPresetStore::save() const {
    if (!fileURL) return;
    if (const auto done = write(); !done)
        log.post(
            platform::LogLevel::error, presetLogCategory,
            {"The plugin presets could not be saved: ", done.error().description}
        );
}

Result<Done> PluginPresetStore::write() const {
    constexpr std::size_t onOneLine = 0;
    session::JSONWriter writer(onOneLine);
    writer.beginObject();
    writer.key(key::entries);
    writer.beginArray();
    for (const auto& [identity, presets] : presetsByComponent)
        plugins::write(writer, identity, presets);
    writer.endArray();
    writer.endObject();
    const std::string& text = writer.text();
    // A file beyond the limits would not be read again.
    if (const auto excess = session::DocumentLimits{}.excess(text.size(), writer.valueCount()))
        return *excess;
    return platform::writeFileAtomically(*fileURL, std::as_bytes(std::span(text)));
}

} // namespace orvane::plugins
