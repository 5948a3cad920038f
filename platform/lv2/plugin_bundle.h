#pragma once

#include <lilv/lilv.h>

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::lv2 {

/// Frees an object that lilv returned.
template <auto release>
struct LilvFree {
    template <class T>
    void operator()(T* object) const noexcept {
        release(object);
    }
};

using WorldHandle = std::unique_ptr<LilvWorld, LilvFree<lilv_world_free>>;
using NodeHandle = std::unique_ptr<LilvNode, LilvFree<lilv_node_free>>;
using NodesHandle = std::unique_ptr<LilvNodes, LilvFree<lilv_nodes_free>>;
using ScalePointsHandle = std::unique_ptr<LilvScalePoints, LilvFree<lilv_scale_points_free>>;
using TextHandle = std::unique_ptr<char, LilvFree<lilv_free>>;

/// The descriptions in one bundle, in a lilv world of their own, which is freed with it. Loads no plugin
/// code. Any thread; only one exists at a time in the process, and a second one waits for it.
class PluginBundle final {
  public:
    explicit PluginBundle(const std::filesystem::path& folder);

    /// Returns the plugins that the bundle declares, in the same order on every call; valid as long as the
    /// bundle.
    [[nodiscard]] std::vector<const LilvPlugin*> plugins() const;
    /// Null if the bundle does not declare it.
    [[nodiscard]] const LilvPlugin* plugin(const std::string& uri) const;

    [[nodiscard]] LilvWorld* lilvWorld() const { return world.get(); }
    /// Returns the node of a URI; each is created once.
    [[nodiscard]] const LilvNode* node(std::string_view uri);

    /// The object of `subject` and `predicate` as text; empty if there is none.
    [[nodiscard]] std::string text(const LilvNode* subject, std::string_view predicate);
    /// The objects of `subject` and `predicate` that are URIs.
    [[nodiscard]] std::vector<std::string> uris(const LilvNode* subject, std::string_view predicate);
    /// The object of `subject` and `predicate` as a number.
    [[nodiscard]] std::optional<int> integer(const LilvNode* subject, std::string_view predicate);

  private:
    std::unique_lock<std::mutex> turn;
    WorldHandle world;
    std::map<std::string, NodeHandle, std::less<>> nodes;
};

/// A node as text; empty if `node` is null.
std::string textOf(const LilvNode* node);

/// The path of a file URI; empty for any other node.
std::string pathOf(const LilvNode* uri);

/// Why the bundle's manifest cannot be read; absent if it can.
std::optional<std::string> manifestProblem(const std::filesystem::path& folder);

} // namespace orvane::platform::lv2
