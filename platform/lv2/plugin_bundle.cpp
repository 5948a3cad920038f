#include "platform/lv2/plugin_bundle.h"

#include <fmt/format.h>
#include <serd/serd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <system_error>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

/// All lilv worlds share a buffer for the names of blank nodes.
std::mutex turns;

/// Keeps the reader's first error.
SerdStatus keepComplaint(void* kept, const SerdError* error) {
    auto& complaint = *static_cast<std::string*>(kept);
    if (!complaint.empty()) return SERD_SUCCESS;
    std::array<char, 256> text{};
    std::vsnprintf(text.data(), text.size(), error->fmt, *error->args);
    complaint = fmt::format("line {}: {}", error->line, text.data());
    while (complaint.ends_with('\n'))
        complaint.pop_back();
    return SERD_SUCCESS;
}

} // namespace

PluginBundle::PluginBundle(const std::filesystem::path& folder) : turn(turns), world(lilv_world_new()) {
    // A dynamic manifest would run the plugin's code.
    const NodeHandle no(lilv_new_bool(world.get(), false));
    lilv_world_set_option(world.get(), LILV_OPTION_DYN_MANIFEST, no.get());
    const NodeHandle uri(lilv_new_file_uri(world.get(), nullptr, (folder / "").c_str()));
    lilv_world_load_bundle(world.get(), uri.get());
}

std::vector<const LilvPlugin*> PluginBundle::plugins() const {
    std::vector<const LilvPlugin*> declared;
    const LilvPlugins* const all = lilv_world_get_all_plugins(world.get());
    LILV_FOREACH(plugins, i, all)
    declared.push_back(lilv_plugins_get(all, i));
    return declared;
}

const LilvPlugin* PluginBundle::plugin(const std::string& uri) const {
    const NodeHandle wanted(lilv_new_uri(world.get(), uri.c_str()));
    return lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world.get()), wanted.get());
}

const LilvNode* PluginBundle::node(std::string_view uri) {
    const auto known = nodes.find(uri);
    if (known != nodes.end()) return known->second.get();
    std::string name(uri);
    NodeHandle made(lilv_new_uri(world.get(), name.c_str()));
    return nodes.emplace(std::move(name), std::move(made)).first->second.get();
}

std::string PluginBundle::text(const LilvNode* subject, std::string_view predicate) {
    return textOf(NodeHandle(lilv_world_get(world.get(), subject, node(predicate), nullptr)).get());
}

std::vector<std::string> PluginBundle::uris(const LilvNode* subject, std::string_view predicate) {
    std::vector<std::string> found;
    const NodesHandle all(lilv_world_find_nodes(world.get(), subject, node(predicate), nullptr));
    LILV_FOREACH(nodes, i, all.get()) {
        const LilvNode* const value = lilv_nodes_get(all.get(), i);
        if (lilv_node_is_uri(value)) found.emplace_back(lilv_node_as_uri(value));
    }
    return found;
}

std::optional<int> PluginBundle::integer(const LilvNode* subject, std::string_view predicate) {
    const NodeHandle value(lilv_world_get(world.get(), subject, node(predicate), nullptr));
    if (value == nullptr || !lilv_node_is_int(value.get())) return std::nullopt;
    return lilv_node_as_int(value.get());
}

std::string textOf(const LilvNode* node) {
    const char* const text = node == nullptr ? nullptr : lilv_node_as_string(node);
    return text == nullptr ? std::string() : std::string(text);
}

std::string pathOf(const LilvNode* uri) {
    const TextHandle path(uri == nullptr ? nullptr : lilv_node_get_path(uri, nullptr));
    return path == nullptr ? std::string() : std::string(path.get());
}

std::optional<std::string> manifestProblem(const std::filesystem::path& folder) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        std::fopen((folder / "manifest.ttl").c_str(), "r"), std::fclose
    );
    if (!file) return "its manifest.ttl cannot be opened";
    std::string complaint;
    const std::unique_ptr<SerdReader, void (*)(SerdReader*)> reader(
        serd_reader_new(SERD_TURTLE, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), serd_reader_free
    );
    serd_reader_set_error_sink(reader.get(), keepComplaint, &complaint);
    const SerdStatus status = serd_reader_read_file_handle(
        reader.get(), file.get(), reinterpret_cast<const std::uint8_t*>("manifest.ttl")
    );
    if (status <= SERD_FAILURE) return std::nullopt;
    return fmt::format("its manifest.ttl cannot be read ({})", complaint);
}

} // namespace orvane::platform::lv2
