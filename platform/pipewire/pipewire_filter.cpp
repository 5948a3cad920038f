#include "platform/pipewire/pipewire_filter.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>

namespace orvane::platform::pipewire {

namespace {

/// A node's ports are listed some time after it has been made.
constexpr std::chrono::seconds longestListing{2};

/// The ids of a node's ports of one direction, in their order.
std::vector<ObjectId> portsOf(const PipeWireObjects& objects, ObjectId node, bool isOutput) {
    std::vector<std::pair<std::uint32_t, ObjectId>> numbered;
    for (const auto& [id, port] : objects.ports)
        if (port.node == node && port.isOutput == isOutput) numbered.emplace_back(port.number, id);
    std::ranges::sort(numbered);
    std::vector<ObjectId> ids;
    ids.reserve(numbered.size());
    for (const auto& [number, id] : numbered)
        ids.push_back(id);
    return ids;
}

} // namespace

PipeWireFilter::~PipeWireFilter() {
    const PipeWireClient::Lock lock(client);
    links.clear();
    if (filter != nullptr) pw_filter_destroy(filter);
    client.disconnect();
}

bool PipeWireFilter::make(Properties properties) {
    static const pw_filter_events events = [] {
        pw_filter_events table{};
        table.version = PW_VERSION_FILTER_EVENTS;
        table.state_changed = [](void* self, pw_filter_state, pw_filter_state, const char*) {
            static_cast<PipeWireFilter*>(self)->client.wake();
        };
        table.process = &PipeWireFilter::process;
        return table;
    }();
    const PipeWireClient::Lock lock(client);
    if (!client.connect()) return false;
    const char* const name = graph.programName().c_str();
    pw_properties* const all = pw_properties_new(
        PW_KEY_NODE_NAME, name, PW_KEY_NODE_DESCRIPTION, name, PW_KEY_MEDIA_ROLE, "DSP", nullptr
    );
    for (const auto& [key, value] : properties)
        pw_properties_set(all, key, value.c_str());
    filter = pw_filter_new(client.core(), name, all);
    if (filter != nullptr) pw_filter_add_listener(filter, &listener, &events, this);
    return filter != nullptr;
}

void PipeWireFilter::process(void* self, spa_io_position* position) noexcept {
    const auto& made = *static_cast<const PipeWireFilter*>(self);
    if (position != nullptr) made.onCycle(made.owner, *position);
}

void* PipeWireFilter::addPort(spa_direction direction, const std::string& name, const char* format) {
    const PipeWireClient::Lock lock(client);
    ++(direction == SPA_DIRECTION_INPUT ? inputCount : outputCount);
    return pw_filter_add_port(
        filter, direction, PW_FILTER_PORT_FLAG_MAP_BUFFERS, sizeof(void*),
        pw_properties_new(PW_KEY_FORMAT_DSP, format, PW_KEY_PORT_NAME, name.c_str(), nullptr), nullptr, 0
    );
}

bool PipeWireFilter::run() {
    ObjectId node = 0;
    {
        const PipeWireClient::Lock lock(client);
        // Elsewhere than on the thread for cycles, ports would have no buffers.
        const bool runs = pw_filter_connect(filter, PW_FILTER_FLAG_RT_PROCESS, nullptr, 0) == 0;
        if (!runs || !client.waitUntil([this] {
                return pw_filter_get_state(filter, nullptr) >= PW_FILTER_STATE_PAUSED;
            }))
            return false;
        node = pw_filter_get_node_id(filter);
    }
    return graph.waitUntil(
        [&] {
            inputs = portsOf(graph.objects(), node, false);
            outputs = portsOf(graph.objects(), node, true);
            return inputs.size() == inputCount && outputs.size() == outputCount;
        },
        longestListing
    );
}

bool PipeWireFilter::link(const std::vector<std::pair<ObjectId, ObjectId>>& pairs) {
    const PipeWireClient::Lock lock(client);
    if (!client.isConnected()) return false;
    const int refusals = client.refusals();
    for (const auto& [source, sink] : pairs) {
        const std::string from = std::to_string(source);
        const std::string to = std::to_string(sink);
        // Links end with this connection, however the program does.
        const spa_dict_item items[] = {
            {PW_KEY_LINK_OUTPUT_PORT, from.c_str()},
            {PW_KEY_LINK_INPUT_PORT, to.c_str()},
            {PW_KEY_OBJECT_LINGER, "false"}};
        const spa_dict properties{.flags = 0, .n_items = std::size(items), .items = items};
        auto* const proxy = static_cast<pw_proxy*>(pw_core_create_object(
            client.core(), "link-factory", PW_TYPE_INTERFACE_Link, PW_VERSION_LINK, &properties, 0
        ));
        if (proxy == nullptr) return false;
        links.emplace(source, proxy);
    }
    return client.sync() && client.refusals() == refusals;
}

void PipeWireFilter::unlink(ObjectId source) {
    const PipeWireClient::Lock lock(client);
    links.erase(source);
}

void PipeWireFilter::unlinkAll() {
    const PipeWireClient::Lock lock(client);
    if (links.empty()) return;
    links.clear();
    client.sync();
}

void PipeWireFilter::set(const char* key, const std::string& value) {
    const PipeWireClient::Lock lock(client);
    const spa_dict_item item{key, value.c_str()};
    const spa_dict properties{.flags = 0, .n_items = 1, .items = &item};
    pw_filter_update_properties(filter, nullptr, &properties);
}

bool PipeWireFilter::isLost() const {
    const PipeWireClient::Lock lock(client);
    return !client.isConnected();
}

} // namespace orvane::platform::pipewire
