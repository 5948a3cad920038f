#pragma once

#include "dsp/realtime.h"
#include "platform/pipewire/pipewire_client.h"
#include "platform/pipewire/pipewire_graph.h"
#include "platform/pipewire/pipewire_objects.h"

#include <pipewire/filter.h>

#include <cstddef>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orvane::platform::pipewire {

/// A node of ours on a connection of its own, and links of its ports. Only for the sources of this folder.
/// One thread at a time; never the I/O thread.
class PipeWireFilter final {
  public:
    /// Called with the owner once a cycle, on the I/O thread; must be real-time safe.
    using Cycle = void (*)(void* owner, const spa_io_position& position) noexcept;
    using Properties = std::initializer_list<std::pair<const char*, std::string>>;

    /// Does not connect yet. `ofServer` and the owner must outlive the filter.
    PipeWireFilter(PipeWireGraph& ofServer, Cycle cycle, void* cycleOwner)
        : graph(ofServer), onCycle(cycle), owner(cycleOwner) {}
    /// No cycle runs when it returns. It waits for one under way without a limit.
    ~PipeWireFilter();
    PipeWireFilter(const PipeWireFilter&) = delete;
    PipeWireFilter& operator=(const PipeWireFilter&) = delete;

    /// Connects and makes the node, without ports. Returns false if no server runs.
    bool make(Properties properties = {});

    /// Adds a port to a node that does not run yet; null if that fails.
    void* addPort(spa_direction direction, const std::string& name, const char* format);

    /// Has the server run the node and waits until it lists its ports.
    bool run();

    /// The ports of a node that runs, in the order in which they were added.
    [[nodiscard]] const std::vector<ObjectId>& inputPorts() const { return inputs; }
    [[nodiscard]] const std::vector<ObjectId>& outputPorts() const { return outputs; }

    /// Links pairs of a port that sends and one that receives; returns whether the server has linked them
    /// all.
    bool link(const std::vector<std::pair<ObjectId, ObjectId>>& pairs);
    /// Removes the links from one port, or all of them: then no cycles follow.
    void unlink(ObjectId source);
    void unlinkAll();

    void set(const char* key, const std::string& value);

    /// Whether the server has gone.
    [[nodiscard]] bool isLost() const;

  private:
    struct ProxyDeleter {
        void operator()(pw_proxy* proxy) const { pw_proxy_destroy(proxy); }
    };

    ORVANE_REALTIME static void process(void* self, spa_io_position* position) noexcept;

    PipeWireGraph& graph;
    Cycle onCycle;
    void* owner;
    std::size_t inputCount = 0;
    std::size_t outputCount = 0;
    std::vector<ObjectId> inputs;
    std::vector<ObjectId> outputs;
    spa_hook listener{};
    PipeWireClient client{PipeWireClient::Cycles::realtime};
    pw_filter* filter = nullptr;
    std::multimap<ObjectId, std::unique_ptr<pw_proxy, ProxyDeleter>> links;
};

} // namespace orvane::platform::pipewire
