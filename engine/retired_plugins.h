#pragma once

#include "platform/base/main_thread.h"
#include "plugins/loaded_insert_plugin.h"

#include <functional>
#include <memory>
#include <vector>

namespace orvane::engine {

/// Plugins that were taken out of their slots, kept until no render pass can hold their contexts: first until
/// the real-time tables are without them, then until the passes that began before have ended, which a timer
/// checks while any are kept. Then they are freed, render resources and all; their host brings them to rest,
/// which may take its time. Owned by the mix. Main thread.
class RetiredPlugins final {
  public:
    /// `noneInUse`: whether no pass holds a context that was withdrawn from the tables.
    RetiredPlugins(platform::MainThread& thread, std::function<bool()> noneInUse);
    RetiredPlugins(const RetiredPlugins&) = delete;
    RetiredPlugins& operator=(const RetiredPlugins&) = delete;

    /// Keeps a plugin whose context the tables may still have. Throws std::bad_alloc if it cannot.
    void add(const std::shared_ptr<plugins::LoadedInsertPlugin>& plugin);

    /// The tables are without all that were added.
    void wereWithdrawn();

    /// Frees what is withdrawn and not in use; a plugin that an abandoned thread is within is kept forever.
    void release();

  private:
    platform::MainThread& mainThread;
    std::function<bool()> nothingIsInUse;
    std::vector<std::shared_ptr<plugins::LoadedInsertPlugin>> inTables;
    std::vector<std::shared_ptr<plugins::LoadedInsertPlugin>> withdrawn;
    std::unique_ptr<platform::MainThreadTimer> retry;
};

} // namespace orvane::engine
