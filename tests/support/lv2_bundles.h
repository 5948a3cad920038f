#pragma once

#include "support/temporary_folder.h"

#include <fmt/format.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace orvane::test {

/// A search path with bundles that a test writes. Each has an empty "plugin.so".
class Lv2Bundles final {
  public:
    [[nodiscard]] std::string searchPath() const { return (folder / "").string(); }

    /// Creates or replaces a bundle with this manifest.
    void add(std::string_view name, std::string_view manifest) const {
        std::filesystem::create_directory(folder / name);
        folder.add(fmt::format("{}/plugin.so", name), "");
        folder.add(fmt::format("{}/manifest.ttl", name), fmt::format("{}{}", prefixes, manifest));
    }

    /// A plugin with a mono input and output. `more`: additional statements, each ending with ";".
    static std::string plugin(std::string_view uri, std::string_view name, std::string_view more) {
        return fmt::format(
            "<{}> a lv2:Plugin ; {} doap:name \"{}\" ; lv2:binary <plugin.so> ; "
            "lv2:port [ {} ] , [ {} ] .\n",
            uri, more, name, audioPort(0, "Input"), audioPort(1, "Output")
        );
    }

    static std::string audioPort(int index, std::string_view direction) {
        return fmt::format(
            "a lv2:AudioPort, lv2:{0}Port ; lv2:index {1} ; lv2:symbol \"p{1}\" ; lv2:name \"P\"", direction,
            index
        );
    }

  private:
    inline static const std::string prefixes = R"(
        @prefix lv2: <http://lv2plug.in/ns/lv2core#> .
        @prefix atom: <http://lv2plug.in/ns/ext/atom#> .
        @prefix bufsz: <http://lv2plug.in/ns/ext/buf-size#> .
        @prefix doap: <http://usefulinc.com/ns/doap#> .
        @prefix foaf: <http://xmlns.com/foaf/0.1/> .
        @prefix opts: <http://lv2plug.in/ns/ext/options#> .
        @prefix pg: <http://lv2plug.in/ns/ext/port-groups#> .
        @prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .
        @prefix pset: <http://lv2plug.in/ns/ext/presets#> .
        @prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .
        @prefix rsz: <http://lv2plug.in/ns/ext/resize-port#> .
        @prefix state: <http://lv2plug.in/ns/ext/state#> .
        @prefix ui: <http://lv2plug.in/ns/extensions/ui#> .
        @prefix units: <http://lv2plug.in/ns/extensions/units#> .
)";

    TemporaryFolder folder;
};

} // namespace orvane::test
