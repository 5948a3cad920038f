#pragma once

#include "dsp/realtime.h"
#include "platform/pipewire/pipewire_objects.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace orvane::platform::pipewire {

/// What the server is set to for the cycles of all nodes. A plain value.
struct PipeWireSettings {
    /// In Hz.
    std::uint32_t sampleRate = 48000;
    /// In frames.
    std::uint32_t quantum = 1024;
    /// The same where a user has fixed them; 0 otherwise.
    std::uint32_t forcedRate = 0;
    std::uint32_t forcedQuantum = 0;
};

/// The objects of the PipeWire server that the environment selects. Connects to a server that runs, never
/// starts one, and looks for one twice a second while there is none. Made by the composition root for all
/// drivers, which it must outlive. Any thread.
class PipeWireGraph final {
  public:
    /// `programName`: the name of the program's nodes, as other programs see it.
    explicit PipeWireGraph(std::string programName = "ORVANE");
    ~PipeWireGraph();
    PipeWireGraph(const PipeWireGraph&) = delete;
    PipeWireGraph& operator=(const PipeWireGraph&) = delete;

    /// Keeps the objects as they are, and observers from being called. One thread can hold several.
    class Lock final {
      public:
        explicit Lock(const PipeWireGraph& locked);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        const PipeWireGraph& graph;
    };

    /// Whether a server runs; looks for one first if there was none so far. Not with the lock.
    bool isServerRunning();

    [[nodiscard]] const std::string& programName() const { return name; }

    /// Empty if no server runs. Requires the lock.
    [[nodiscard]] const PipeWireObjects& objects() const;
    [[nodiscard]] const PipeWireSettings& settings() const;

    /// Waits until the objects are those that the server has now and `condition` holds, which is checked with
    /// the lock. Returns false if the server is gone or that takes longer than `longest`. Not with the lock.
    bool waitUntil(const std::function<bool()>& condition, std::chrono::nanoseconds longest);

    /// A subscription; its destructor waits for a call of the observer under way; none follows.
    class Observer final {
      public:
        /// Calls `function` on the graph's thread, with the lock, soon after each change and each `wake`.
        Observer(PipeWireGraph& observed, std::function<void()> function);
        ~Observer();
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;

      private:
        friend class PipeWireGraph;
        PipeWireGraph& graph;
        std::function<void()> callee;
    };

    /// Has the observers called. Real-time safe: it writes to a descriptor and never blocks.
    ORVANE_REALTIME void wake() noexcept;

  private:
    struct State;

    std::string name;
    std::unique_ptr<State> state;
};

} // namespace orvane::platform::pipewire
