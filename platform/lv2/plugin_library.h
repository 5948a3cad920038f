#pragma once

#include "platform/base/result.h"
#include "platform/lv2/plugin_description.h"

#include <lv2/core/lv2.h>

#include <memory>
#include <utility>

namespace orvane::platform::lv2 {

/// A plugin in its shared library, whose code stays in memory to the end of the process.
class PluginLibrary final {
  public:
    /// Loads the library and finds the plugin in it. Any thread.
    static Result<PluginLibrary> load(const PluginDescription& description);

    [[nodiscard]] const LV2_Descriptor& descriptor() const { return *found; }

  private:
    using LibraryDescriptor = std::shared_ptr<const LV2_Lib_Descriptor>;

    PluginLibrary(const LV2_Descriptor* descriptor, LibraryDescriptor library)
        : found(descriptor), libraryDescriptor(std::move(library)) {}

    const LV2_Descriptor* found;
    /// Where the library has one; the descriptor lives as long.
    LibraryDescriptor libraryDescriptor;
};

} // namespace orvane::platform::lv2
