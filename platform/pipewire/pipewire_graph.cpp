#include "platform/pipewire/pipewire_graph.h"

#include "platform/pipewire/pipewire_client.h"

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

#include <algorithm>
#include <charconv>
#include <list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::platform::pipewire {

namespace {

constexpr timespec retryInterval{.tv_sec = 0, .tv_nsec = 500'000'000};
/// Collections of settings that session managers and users change.
constexpr std::string_view settingsName = "settings";
constexpr std::string_view defaultsName = "default";

/// Empty if there is no such property.
std::string_view textOf(const spa_dict& properties, const char* key) {
    const char* const value = spa_dict_lookup(&properties, key);
    return value == nullptr ? std::string_view() : value;
}

template <class Number>
Number numberIn(std::string_view text, Number otherwise = 0) {
    std::from_chars(text.data(), text.data() + text.size(), otherwise);
    return otherwise;
}

/// The last string in a JSON object such as { "name": "card" }; empty if there is none.
std::string lastQuoted(std::string_view object) {
    const std::size_t end = object.rfind('"');
    const std::size_t begin = end == 0 ? std::string_view::npos : object.rfind('"', end - 1);
    if (end == std::string_view::npos || begin == std::string_view::npos) return {};
    return std::string(object.substr(begin + 1, end - begin - 1));
}

PipeWireCard cardOf(const spa_dict& properties) {
    const std::string name(textOf(properties, PW_KEY_DEVICE_NAME));
    const std::string description(textOf(properties, PW_KEY_DEVICE_DESCRIPTION));
    return {name, description.empty() ? name : description};
}

PipeWireNode nodeOf(const spa_dict& properties) {
    PipeWireNode node{
        .name = std::string(textOf(properties, PW_KEY_NODE_NAME)),
        .description = std::string(textOf(properties, PW_KEY_NODE_DESCRIPTION)),
        .mediaClass = std::string(textOf(properties, PW_KEY_MEDIA_CLASS)),
        .path = std::string(textOf(properties, PW_KEY_OBJECT_PATH)),
        .card = std::nullopt};
    if (const std::string_view card = textOf(properties, PW_KEY_DEVICE_ID); !card.empty())
        node.card = numberIn<ObjectId>(card);
    return node;
}

PipeWirePort portOf(const spa_dict& properties) {
    return {
        .serial = numberIn<std::uint64_t>(textOf(properties, PW_KEY_OBJECT_SERIAL)),
        .node = numberIn<ObjectId>(textOf(properties, PW_KEY_NODE_ID)),
        .number = numberIn<std::uint32_t>(textOf(properties, PW_KEY_PORT_ID)),
        .name = std::string(textOf(properties, PW_KEY_PORT_NAME)),
        .alias = std::string(textOf(properties, PW_KEY_PORT_ALIAS)),
        .format = std::string(textOf(properties, PW_KEY_FORMAT_DSP)),
        .isOutput = textOf(properties, PW_KEY_PORT_DIRECTION) == "out"};
}

} // namespace

struct PipeWireGraph::State {
    State() {
        const PipeWireClient::Lock lock(client);
        changed = pw_loop_add_event(
            client.loop(), [](void* self, std::uint64_t) { static_cast<State*>(self)->notify(); }, this
        );
        retryTimer = pw_loop_add_timer(
            client.loop(), [](void* self, std::uint64_t) { static_cast<State*>(self)->connect(); }, this
        );
        connect();
    }

    ~State() {
        const PipeWireClient::Lock lock(client);
        release();
        client.disconnect();
        pw_loop_destroy_source(client.loop(), changed);
        pw_loop_destroy_source(client.loop(), retryTimer);
    }

    State(const State&) = delete;
    State& operator=(const State&) = delete;

    /// Requires the lock, and that no callback of the server is under way.
    void connect() {
        static const pw_registry_events events = [] {
            pw_registry_events table{};
            table.version = PW_VERSION_REGISTRY_EVENTS;
            table.global = &State::appeared;
            table.global_remove = &State::disappeared;
            return table;
        }();
        if (client.isConnected()) return;
        release();
        const bool isConnected = client.connect();
        retry(!isConnected);
        if (!isConnected) return;
        registry = pw_core_get_registry(client.core(), PW_VERSION_REGISTRY, 0);
        registryListener = {};
        pw_registry_add_listener(registry, &registryListener, &events, this);
    }

    void retry(bool isWanted) {
        timespec interval = isWanted ? retryInterval : timespec{};
        pw_loop_update_timer(client.loop(), retryTimer, &interval, &interval, false);
    }

    /// Destroys what belongs to a connection.
    void release() {
        for (Metadata& bound : metadata) {
            spa_hook_remove(&bound.listener);
            pw_proxy_destroy(bound.proxy);
        }
        if (registry != nullptr) {
            spa_hook_remove(&registryListener);
            pw_proxy_destroy(reinterpret_cast<pw_proxy*>(registry));
        }
        metadata.clear();
        registry = nullptr;
    }

    /// Called within a callback of the server, which must not destroy anything: the next `connect` does.
    void loseServer() {
        listed = {};
        current = {};
        isComplete = false;
        pw_loop_signal_event(client.loop(), changed);
        retry(true);
    }

    void notify() {
        for (const Observer* const observer : observers)
            observer->callee();
        client.wake();
    }

    static void appeared(
        void* self, ObjectId id, std::uint32_t, const char* type, std::uint32_t, const spa_dict* properties
    ) {
        auto& state = *static_cast<State*>(self);
        if (properties == nullptr) return;
        const std::string_view kind = type;
        if (kind == PW_TYPE_INTERFACE_Device) state.listed.cards[id] = cardOf(*properties);
        if (kind == PW_TYPE_INTERFACE_Node) state.listed.nodes[id] = nodeOf(*properties);
        if (kind == PW_TYPE_INTERFACE_Port) state.listed.ports[id] = portOf(*properties);
        if (kind == PW_TYPE_INTERFACE_Link)
            state.listed.links[id] = numberIn<ObjectId>(textOf(*properties, PW_KEY_LINK_OUTPUT_PORT));
        if (kind == PW_TYPE_INTERFACE_Metadata) {
            const std::string_view name = textOf(*properties, PW_KEY_METADATA_NAME);
            if (name == settingsName || name == defaultsName) state.follow(id);
        }
        pw_loop_signal_event(state.client.loop(), state.changed);
    }

    static void disappeared(void* self, ObjectId id) {
        auto& state = *static_cast<State*>(self);
        state.listed.cards.erase(id);
        state.listed.nodes.erase(id);
        state.listed.ports.erase(id);
        state.listed.links.erase(id);
        pw_loop_signal_event(state.client.loop(), state.changed);
    }

    void follow(ObjectId id) {
        static const pw_metadata_events events = [] {
            pw_metadata_events table{};
            table.version = PW_VERSION_METADATA_EVENTS;
            table.property = &State::setting;
            return table;
        }();
        auto* const proxy = static_cast<pw_proxy*>(
            pw_registry_bind(registry, id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA, 0)
        );
        if (proxy == nullptr) return;
        Metadata& bound = metadata.emplace_back(Metadata{proxy, {}});
        pw_metadata_add_listener(reinterpret_cast<pw_metadata*>(proxy), &bound.listener, &events, this);
    }

    static int setting(void* self, ObjectId, const char* key, const char*, const char* value) {
        auto& state = *static_cast<State*>(self);
        if (key == nullptr) return 0;
        const std::string_view name = key;
        if (name == "default.audio.sink")
            state.listed.defaultSink = lastQuoted(value == nullptr ? std::string_view() : value);
        if (value == nullptr) return 0;
        PipeWireSettings& settings = state.current;
        if (name == "clock.rate") settings.sampleRate = numberIn(value, settings.sampleRate);
        if (name == "clock.quantum") settings.quantum = numberIn(value, settings.quantum);
        if (name == "clock.force-rate") settings.forcedRate = numberIn(value, settings.forcedRate);
        if (name == "clock.force-quantum") settings.forcedQuantum = numberIn(value, settings.forcedQuantum);
        pw_loop_signal_event(state.client.loop(), state.changed);
        return 0;
    }

    struct Metadata {
        pw_proxy* proxy = nullptr;
        spa_hook listener{};
    };

    PipeWireObjects listed;
    PipeWireSettings current;
    /// Whether the server has listed all that it had when the connection was made.
    bool isComplete = false;
    std::vector<const Observer*> observers;
    pw_registry* registry = nullptr;
    spa_hook registryListener{};
    std::list<Metadata> metadata;
    spa_source* changed = nullptr;
    spa_source* retryTimer = nullptr;
    /// The last member: its thread uses the others.
    PipeWireClient client{PipeWireClient::Cycles::none, [this] { loseServer(); }};
};

PipeWireGraph::PipeWireGraph(std::string programName)
    : name(std::move(programName)), state(std::make_unique<State>()) {}
PipeWireGraph::~PipeWireGraph() = default;

PipeWireGraph::Lock::Lock(const PipeWireGraph& locked) : graph(locked) {
    pw_thread_loop_lock(graph.state->client.eventThread());
}

PipeWireGraph::Lock::~Lock() {
    pw_thread_loop_unlock(graph.state->client.eventThread());
}

bool PipeWireGraph::isServerRunning() {
    const Lock lock(*this);
    state->connect();
    // The settings are bound in the first answer, and come with the second.
    if (!state->isComplete) state->isComplete = state->client.sync() && state->client.sync();
    return state->isComplete;
}

const PipeWireObjects& PipeWireGraph::objects() const {
    return state->listed;
}

const PipeWireSettings& PipeWireGraph::settings() const {
    return state->current;
}

bool PipeWireGraph::waitUntil(const std::function<bool()>& condition, std::chrono::nanoseconds longest) {
    const Lock lock(*this);
    return state->client.sync() && state->client.waitUntil(condition, longest);
}

PipeWireGraph::Observer::Observer(PipeWireGraph& observed, std::function<void()> function)
    : graph(observed), callee(std::move(function)) {
    const Lock lock(graph);
    graph.state->observers.push_back(this);
}

PipeWireGraph::Observer::~Observer() {
    const Lock lock(graph);
    std::erase(graph.state->observers, this);
}

void PipeWireGraph::wake() noexcept {
    pw_loop_signal_event(state->client.loop(), state->changed);
}

} // namespace orvane::platform::pipewire
