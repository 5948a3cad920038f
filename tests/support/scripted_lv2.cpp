#include "support/scripted_lv2.h"

#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

// An LV2 plugin that multiplies its input by its control "gain". Its worker multiplies the gain by ten, which
// it outputs as "answer"; the answer is -1 if the host has not connected the other ports correctly. Its state
// has one value of every type, and a file's path as a path and as a text. It returns the atoms it receives;
// those with a negative integer with a wrong size.

namespace {

using orvane::test::ScriptedLv2Probe;

ScriptedLv2Probe probe;

struct Plugin {
    LV2_URID_Map* map = nullptr;
    LV2_Worker_Schedule* schedule = nullptr;
    LV2_Log_Log* log = nullptr;
    /// Set by the last work.
    std::atomic<LV2_Worker_Respond_Function> respond = nullptr;
    std::atomic<LV2_Worker_Respond_Handle> respondHandle = nullptr;
    std::array<void*, 12> ports{};
    float answer = 0.0F;
    int activations = 0;
    int deactivations = 0;

    std::int32_t number = 1;
    std::string text = "first";
    LV2_URID choice = 0;
    std::string file;
    std::string fileAsText;
    struct Floats {
        LV2_Atom_Vector_Body head{};
        std::array<float, 2> values{};
    } floats;

    [[nodiscard]] LV2_URID urid(const char* uri) const { return map->map(map->handle, uri); }
    template <class T>
    [[nodiscard]] T* port(std::size_t index) const {
        return static_cast<T*>(ports[index]);
    }
};

/// Marks a call that sets up or ends a plugin.
class SetUp final {
  public:
    SetUp() {
        if (count.fetch_add(1) > 0) probe.overlappingSetUps.fetch_add(1);
        for (int i = 0; i < 20; ++i)
            std::this_thread::yield();
    }
    ~SetUp() { count.fetch_sub(1); }
    SetUp(const SetUp&) = delete;
    SetUp& operator=(const SetUp&) = delete;

  private:
    static inline std::atomic<int> count = 0;
};

void throwIf(ScriptedLv2Probe::Throw place) {
    if (probe.throwsIn.load() == place) throw std::runtime_error("as it was told to");
}

int callHost(const Plugin& plugin) {
    const float request = 1.0F;
    int taken = plugin.schedule->schedule_work(plugin.schedule->handle, sizeof request, &request)
                        == LV2_WORKER_SUCCESS
                    ? 1
                    : 0;
    const LV2_Worker_Respond_Function respond = plugin.respond.load();
    if (respond != nullptr
        && respond(plugin.respondHandle.load(), sizeof request, &request) == LV2_WORKER_SUCCESS)
        ++taken;
    if (plugin.urid("urn:orvane:test:strange") != 0) ++taken;
    if (plugin.log->printf(plugin.log->handle, plugin.urid(LV2_LOG__Note), "from a strange thread") > 0)
        ++taken;
    return taken;
}

LV2_Handle
instantiate(const LV2_Descriptor* descriptor, double, const char*, const LV2_Feature* const* features) {
    if (std::strstr(descriptor->URI, "refuses") != nullptr) return nullptr;
    const SetUp setUp;
    throwIf(ScriptedLv2Probe::Throw::instantiate);
    probe.isInstantiating.store(true);
    while (probe.holdsInstantiate.load())
        std::this_thread::yield();
    probe.isInstantiating.store(false);
    auto* const plugin = new Plugin;
    for (; *features != nullptr; ++features) {
        if (std::strcmp((*features)->URI, LV2_URID__map) == 0)
            plugin->map = static_cast<LV2_URID_Map*>((*features)->data);
        if (std::strcmp((*features)->URI, LV2_WORKER__schedule) == 0)
            plugin->schedule = static_cast<LV2_Worker_Schedule*>((*features)->data);
        if (std::strcmp((*features)->URI, LV2_LOG__log) == 0)
            plugin->log = static_cast<LV2_Log_Log*>((*features)->data);
    }
    probe.pluginCount.fetch_add(1);
    probe.callHost = [plugin] { return callHost(*plugin); };
    plugin->choice = plugin->urid("urn:orvane:test:choice");
    plugin->floats.head = {sizeof(float), plugin->urid(LV2_ATOM__Float)};
    return plugin;
}

void connectPort(LV2_Handle handle, std::uint32_t port, void* data) {
    static_cast<Plugin*>(handle)->ports[port] = data;
}

bool arePortsConnected(const Plugin& plugin, std::uint32_t frameCount) {
    const auto* const events = plugin.port<LV2_Atom_Sequence>(4);
    auto* const room = plugin.port<LV2_Atom>(5);
    if (events->atom.type != plugin.urid(LV2_ATOM__Sequence)) return false;
    if (room->type != plugin.urid(LV2_ATOM__Chunk) || room->size < 65536) return false;
    std::memset(static_cast<void*>(room + 1), 1, room->size);
    float sum = 0.0F;
    for (std::uint32_t i = 0; i < frameCount; ++i)
        sum += std::abs(plugin.port<float>(7)[i]);
    return plugin.ports[6] == nullptr && sum == 0.0F;
}

void sendBack(const Plugin& plugin) {
    const auto& received = *plugin.port<LV2_Atom_Sequence>(4);
    if (received.atom.size <= sizeof received.body) return;
    auto* const sent = plugin.port<LV2_Atom_Sequence>(5);
    std::memcpy(static_cast<void*>(sent), &received, sizeof received.atom + received.atom.size);
    LV2_ATOM_SEQUENCE_FOREACH(sent, event) {
        std::int32_t number = 0;
        std::memcpy(&number, event + 1, sizeof number);
        if (number >= 0) continue;
        event->body.size = std::numeric_limits<std::uint32_t>::max() - 8;
        return;
    }
}

void run(LV2_Handle handle, std::uint32_t frameCount) {
    auto& plugin = *static_cast<Plugin*>(handle);
    throwIf(ScriptedLv2Probe::Throw::run);
    if (probe.isRestoring.load()) probe.runsDuringRestore.fetch_add(1);
    const float plays = probe.plays.load();
    const float gain = *plugin.port<float>(2);
    for (std::uint32_t i = 0; i < frameCount; ++i)
        plugin.port<float>(1)[i] = plays != 0.0F ? plays : gain * plugin.port<float>(0)[i];
    plugin.schedule->schedule_work(plugin.schedule->handle, sizeof gain, &gain);
    const bool isConnected = arePortsConnected(plugin, frameCount);
    *plugin.port<float>(3) = isConnected ? plugin.answer : -1.0F;
    if (isConnected) sendBack(plugin);
}

LV2_Worker_Status work(
    LV2_Handle instance, LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle handle, std::uint32_t,
    const void* data
) {
    throwIf(ScriptedLv2Probe::Throw::work);
    probe.isWorking.store(true);
    while (probe.holdsWork.load())
        std::this_thread::yield();
    probe.isWorking.store(false);
    auto& plugin = *static_cast<Plugin*>(instance);
    plugin.respondHandle = handle;
    plugin.respond = respond;
    // Allocates, as most work does.
    const auto answer = std::make_unique<float>(*static_cast<const float*>(data) * 10.0F);
    const LV2_Worker_Status status = respond(handle, sizeof *answer, answer.get());
    probe.worksDone.fetch_add(1);
    return status;
}

LV2_Worker_Status workResponse(LV2_Handle handle, std::uint32_t, const void* data) {
    throwIf(ScriptedLv2Probe::Throw::workResponse);
    auto& plugin = *static_cast<Plugin*>(handle);
    plugin.answer = *static_cast<const float*>(data);
    if (probe.goesOnWorking.load())
        return plugin.schedule->schedule_work(plugin.schedule->handle, sizeof plugin.answer, &plugin.answer);
    return LV2_WORKER_SUCCESS;
}

LV2_Worker_Status endRun(LV2_Handle) {
    probe.runsEnded.fetch_add(1);
    return LV2_WORKER_SUCCESS;
}

/// Maps a path to its form in the state or, if `isRestored`, in the plugin.
std::string mapped(const std::string& path, bool isRestored, const LV2_Feature* const* features) {
    const LV2_State_Map_Path* map = nullptr;
    const LV2_State_Free_Path* free = nullptr;
    for (; *features != nullptr; ++features) {
        if (std::strcmp((*features)->URI, LV2_STATE__mapPath) == 0)
            map = static_cast<const LV2_State_Map_Path*>((*features)->data);
        if (std::strcmp((*features)->URI, LV2_STATE__freePath) == 0)
            free = static_cast<const LV2_State_Free_Path*>((*features)->data);
    }
    char* const found = isRestored ? map->absolute_path(map->handle, path.c_str())
                                   : map->abstract_path(map->handle, path.c_str());
    std::string copy = found;
    free->free_path(free->handle, found);
    return copy;
}

LV2_State_Status save(
    LV2_Handle handle, LV2_State_Store_Function store, LV2_State_Handle state, std::uint32_t,
    const LV2_Feature* const* features
) {
    const auto& plugin = *static_cast<Plugin*>(handle);
    constexpr std::uint32_t plain = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;
    const auto put = [&](const char* key, const void* value, std::size_t size, const char* type,
                         std::uint32_t flags) {
        return store(state, plugin.urid(key), value, size, plugin.urid(type), flags);
    };
    put("urn:orvane:test:number", &plugin.number, sizeof plugin.number, LV2_ATOM__Int, plain);
    throwIf(ScriptedLv2Probe::Throw::save);
    put("urn:orvane:test:text", plugin.text.c_str(), plugin.text.size() + 1, LV2_ATOM__String, plain);
    put("urn:orvane:test:choice", &plugin.choice, sizeof plugin.choice, LV2_ATOM__URID, plain);
    put("urn:orvane:test:floats", &plugin.floats, sizeof plugin.floats, LV2_ATOM__Vector, plain);
    const std::string file = mapped(plugin.file, false, features);
    put("urn:orvane:test:path", file.c_str(), file.size() + 1, LV2_ATOM__Path, plain);
    const std::string text = mapped(plugin.fileAsText, false, features);
    put("urn:orvane:test:pathAsText", text.c_str(), text.size() + 1, LV2_ATOM__String, plain);
    put("urn:orvane:test:object", &plugin.number, sizeof plugin.number, LV2_ATOM__Object, plain);
    put("urn:orvane:test:pointer", &handle, sizeof handle, LV2_ATOM__Chunk, 0);
    return probe.deniesState.load() ? LV2_STATE_ERR_UNKNOWN : LV2_STATE_SUCCESS;
}

LV2_State_Status restore(
    LV2_Handle handle, LV2_State_Retrieve_Function retrieve, LV2_State_Handle state, std::uint32_t,
    const LV2_Feature* const* features
) {
    auto& plugin = *static_cast<Plugin*>(handle);
    probe.isRestoring.store(true);
    while (probe.holdsRestore.load())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::size_t size = 0;
    const auto get = [&](const char* key, const char* type) -> const void* {
        LV2_URID found = 0;
        std::uint32_t flags = 0;
        const void* const value = retrieve(state, plugin.urid(key), &size, &found, &flags);
        return found == plugin.urid(type) ? value : nullptr;
    };
    if (const void* value = get("urn:orvane:test:number", LV2_ATOM__Int))
        std::memcpy(&plugin.number, value, sizeof plugin.number);
    probe.isRestoring.store(probe.throwsIn.load() != ScriptedLv2Probe::Throw::restore);
    throwIf(ScriptedLv2Probe::Throw::restore);
    if (const void* value = get("urn:orvane:test:text", LV2_ATOM__String))
        plugin.text = static_cast<const char*>(value);
    if (const void* value = get("urn:orvane:test:choice", LV2_ATOM__URID))
        std::memcpy(&plugin.choice, value, sizeof plugin.choice);
    if (const void* value = get("urn:orvane:test:floats", LV2_ATOM__Vector);
        value != nullptr && size == sizeof plugin.floats)
        std::memcpy(&plugin.floats, value, sizeof plugin.floats);
    if (const void* value = get("urn:orvane:test:path", LV2_ATOM__Path))
        plugin.file = static_cast<const char*>(value);
    if (const void* value = get("urn:orvane:test:pathAsText", LV2_ATOM__String))
        plugin.fileAsText = mapped(static_cast<const char*>(value), true, features);
    probe.isRestoring.store(false);
    return probe.deniesState.load() ? LV2_STATE_ERR_UNKNOWN : LV2_STATE_SUCCESS;
}

const void* extensionData(const char* uri) {
    throwIf(ScriptedLv2Probe::Throw::extensionData);
    static const LV2_Worker_Interface worker{work, workResponse, endRun};
    static const LV2_State_Interface state{save, restore};
    if (std::strcmp(uri, LV2_WORKER__interface) == 0) return &worker;
    if (std::strcmp(uri, LV2_STATE__interface) == 0) return &state;
    return nullptr;
}

void activate(LV2_Handle handle) {
    const SetUp setUp;
    ++static_cast<Plugin*>(handle)->activations;
}

void deactivate(LV2_Handle handle) {
    const SetUp setUp;
    ++static_cast<Plugin*>(handle)->deactivations;
}

void cleanup(LV2_Handle handle) {
    const SetUp setUp;
    const auto* const plugin = static_cast<Plugin*>(handle);
    if (plugin->activations == 0 || plugin->activations != plugin->deactivations)
        probe.untimelyCleanups.fetch_add(1);
    delete plugin;
    probe.pluginCount.fetch_sub(1);
    throwIf(ScriptedLv2Probe::Throw::cleanup);
}

/// Multiplies its input by ten times its third port, which its worker computes.
void amplifyByWork(LV2_Handle handle, std::uint32_t frameCount) {
    const auto& plugin = *static_cast<Plugin*>(handle);
    for (std::uint32_t i = 0; i < frameCount; ++i)
        plugin.port<float>(1)[i] = plugin.answer * plugin.port<float>(0)[i];
    plugin.schedule->schedule_work(plugin.schedule->handle, sizeof(float), plugin.ports[2]);
}

/// Copies one input to one output and, three times as loud, to another.
void split(LV2_Handle handle, std::uint32_t frameCount) {
    const auto& plugin = *static_cast<Plugin*>(handle);
    for (std::uint32_t i = 0; i < frameCount; ++i) {
        plugin.port<float>(1)[i] = plugin.port<float>(0)[i];
        plugin.port<float>(2)[i] = 3.0F * plugin.port<float>(0)[i];
    }
}

/// Adds one input and, three times as loud, another.
void join(LV2_Handle handle, std::uint32_t frameCount) {
    const auto& plugin = *static_cast<Plugin*>(handle);
    for (std::uint32_t i = 0; i < frameCount; ++i)
        plugin.port<float>(2)[i] = plugin.port<float>(0)[i] + 3.0F * plugin.port<float>(1)[i];
}

const void* noExtensions(const char*) {
    return nullptr;
}

constexpr LV2_Descriptor describe(
    const char* uri, void (*runs)(LV2_Handle, std::uint32_t) = run,
    const void* (*extends)(const char*) = extensionData
) {
    return {uri, instantiate, connectPort, activate, runs, deactivate, cleanup, extends};
}

constexpr LV2_Descriptor descriptors[] = {
    describe("urn:orvane:test:plain"),
    describe("urn:orvane:test:safe"),
    describe("urn:orvane:test:refuses"),
    describe("urn:orvane:test:amplifier", amplifyByWork),
    describe("urn:orvane:test:split", split, noExtensions),
    describe("urn:orvane:test:join", join, noExtensions)};

} // namespace

extern "C" {

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
    return index < std::size(descriptors) ? &descriptors[index] : nullptr;
}

LV2_SYMBOL_EXPORT ScriptedLv2Probe* orvaneScriptedLv2Probe() {
    return &probe;
}
}
