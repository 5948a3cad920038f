#include "platform/lv2/editor_description.h"

#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>

#include <algorithm>

namespace orvane::platform::lv2 {

namespace {

constexpr const char* typeUri = "http://www.w3.org/1999/02/22-rdf-syntax-ns#type";

bool contains(const std::vector<std::string>& uris, const char* uri) {
    return std::ranges::find(uris, uri) != uris.end();
}

/// Older descriptions use ui:binary.
std::string libraryOf(PluginBundle& bundle, const LilvNode* editor) {
    for (const char* predicate : {LV2_CORE__binary, LV2_UI__binary})
        for (const std::string& uri : bundle.uris(editor, predicate))
            return pathOf(bundle.node(uri));
    return {};
}

} // namespace

std::optional<EditorDescription> describeEditor(PluginBundle& bundle, const LilvPlugin* plugin) {
    for (const std::string& uri : bundle.uris(lilv_plugin_get_uri(plugin), LV2_UI__ui)) {
        const LilvNode* const editor = bundle.node(uri);
        lilv_world_load_resource(bundle.lilvWorld(), editor);
        if (!contains(bundle.uris(editor, typeUri), LV2_UI__X11UI)) continue;
        EditorDescription description;
        description.uri = uri;
        description.bundlePath = pathOf(lilv_plugin_get_bundle_uri(plugin));
        description.libraryPath = libraryOf(bundle, editor);
        description.requiredFeatures = bundle.uris(editor, LV2_CORE__requiredFeature);
        description.requiredOptions = bundle.uris(editor, LV2_OPTIONS__requiredOption);
        const auto optional = bundle.uris(editor, LV2_CORE__optionalFeature);
        for (const char* fixing : {LV2_UI__noUserResize, LV2_UI__fixedSize})
            if (contains(optional, fixing) || contains(description.requiredFeatures, fixing))
                description.hasFixedSize = true;
        return description;
    }
    return std::nullopt;
}

} // namespace orvane::platform::lv2
