#pragma once

#include "platform/lv2/lilv_handles.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::lv2 {

/// The descriptions in one bundle, in a world of their own, of which nothing stays in memory. No code of a
/// plugin is loaded. Any thread; there is one at a time in the whole process, and a second one waits for it.
class PluginBundle final {
  public:
    explicit PluginBundle(const std::filesystem::path& folder);

    /// The plugins that the bundle declares, in an order that is the same on every call; they live as long as
    /// the bundle.
    [[nodiscard]] std::vector<const LilvPlugin*> plugins() const;
    /// Null where the bundle does not declare it.
    [[nodiscard]] const LilvPlugin* plugin(const std::string& uri) const;

    [[nodiscard]] LilvWorld* lilvWorld() const { return world.get(); }
    /// The node of a URI that is named in code, made once.
    [[nodiscard]] const LilvNode* node(std::string_view uri);

    /// What `subject` has as `predicate`, as text; empty where there is none.
    [[nodiscard]] std::string text(const LilvNode* subject, std::string_view predicate);
    /// The URIs of `subject`'s `predicate`.
    [[nodiscard]] std::vector<std::string> uris(const LilvNode* subject, std::string_view predicate);
    /// A number that `subject` has as `predicate`.
    [[nodiscard]] std::optional<int> integer(const LilvNode* subject, std::string_view predicate);

  private:
    std::unique_lock<std::mutex> turn;
    WorldHandle world;
    std::map<std::string, NodeHandle, std::less<>> nodes;
};

/// What a node says as text; empty for none.
std::string textOf(const LilvNode* node);

/// The path of the file that a node is the URI of; empty for anything else.
std::string pathOf(const LilvNode* uri);

/// Why the bundle's manifest cannot be read, where that is so.
std::optional<std::string> manifestProblem(const std::filesystem::path& folder);

} // namespace orvane::platform::lv2
