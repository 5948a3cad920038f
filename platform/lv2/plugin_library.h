#pragma once

#include "platform/base/result.h"
#include "platform/lv2/plugin_description.h"

#include <lv2/core/lv2.h>

#include <memory>
#include <utility>

namespace orvane::platform::lv2 {

/// A plugin in its shared library. The library stays loaded until the process ends.
class PluginLibrary final {
  public:
    /// Loads the library and looks up the plugin. Any thread.
    static Result<PluginLibrary> load(const PluginDescription& description);

    [[nodiscard]] const LV2_Descriptor& descriptor() const { return *found; }

  private:
    using LibraryDescriptor = std::shared_ptr<const LV2_Lib_Descriptor>;

    PluginLibrary(const LV2_Descriptor* descriptor, LibraryDescriptor library)
        : found(descriptor), libraryDescriptor(std::move(library)) {}

    const LV2_Descriptor* found;
    /// Null if the library has none; otherwise the plugin's descriptor lives as long as it.
    LibraryDescriptor libraryDescriptor;
};

} // namespace orvane::platform::lv2
