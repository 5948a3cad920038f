#include "platform/pipewire/pipewire_client.h"

#include "platform/pipewire/pipewire_socket.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <tuple>
#include <utility>

namespace orvane::platform::pipewire {

namespace {

constexpr const char* programName = "ORVANE";

/// Silences libpipewire, which otherwise prints to standard error, unless the user asks for its messages.
void initialiseOnce() {
    static const bool isDone = [] {
        pw_init(nullptr, nullptr);
        if (std::getenv("PIPEWIRE_DEBUG") == nullptr) pw_log_set_level(SPA_LOG_LEVEL_NONE);
        return true;
    }();
    static_cast<void>(isDone);
}

/// Since this version, the usual configuration has real-time cycles, and the other one is deprecated.
bool hasOneConfiguration() {
    int major = 0;
    int minor = 0;
    int micro = 0;
    if (std::sscanf(pw_get_library_version(), "%d.%d.%d", &major, &minor, &micro) < 3) return false;
    return std::tuple(major, minor, micro) >= std::tuple(1, 3, 81);
}

const char* configurationFor(PipeWireClient::Cycles cycles) {
    const bool isSpecial = cycles == PipeWireClient::Cycles::realtime && !hasOneConfiguration();
    return isSpecial ? "client-rt.conf" : "client.conf";
}

} // namespace

PipeWireClient::PipeWireClient(Cycles clientCycles, std::function<void()> onServerLost)
    : cycles(clientCycles), onLost(std::move(onServerLost)) {
    initialiseOnce();
    thread = pw_thread_loop_new("orvane-pipewire", nullptr);
    pw_thread_loop_start(thread);
}

PipeWireClient::~PipeWireClient() {
    {
        const Lock lock(*this);
        disconnect();
    }
    pw_thread_loop_stop(thread);
    if (context != nullptr) pw_context_destroy(context);
    pw_thread_loop_destroy(thread);
}

bool PipeWireClient::makeContext() {
    if (context == nullptr)
        context = pw_context_new(
            loop(), pw_properties_new(PW_KEY_CONFIG_NAME, configurationFor(cycles), nullptr), 0
        );
    return context != nullptr;
}

bool PipeWireClient::connect() {
    static const pw_core_events events = [] {
        pw_core_events table{};
        table.version = PW_VERSION_CORE_EVENTS;
        table.done = &PipeWireClient::done;
        table.error = &PipeWireClient::failed;
        return table;
    }();
    if (isConnected()) return true;
    disconnect();
    // libpipewire asks the C library for the user's name, which answers one thread at a time.
    static std::mutex connecting;
    const std::scoped_lock oneAtATime(connecting);
    if (!isPipeWireRunning() || !makeContext()) return false;
    connection = pw_context_connect(context, pw_properties_new(PW_KEY_APP_NAME, programName, nullptr), 0);
    if (connection == nullptr) return false;
    lost = false;
    refused = 0;
    coreListener = {};
    pw_core_add_listener(connection, &coreListener, &events, this);
    return true;
}

void PipeWireClient::disconnect() {
    if (connection == nullptr) return;
    spa_hook_remove(&coreListener);
    pw_core_disconnect(connection);
    connection = nullptr;
}

bool PipeWireClient::sync() {
    if (!isConnected()) return false;
    const int sequence = pw_core_sync(connection, PW_ID_CORE, 0);
    return waitUntil([this, sequence] { return lastDone == sequence; }) && isConnected();
}

void PipeWireClient::done(void* self, std::uint32_t id, int sequence) {
    auto& client = *static_cast<PipeWireClient*>(self);
    if (id != PW_ID_CORE) return;
    client.lastDone = sequence;
    client.wake();
}

void PipeWireClient::failed(void* self, std::uint32_t id, int, int status, const char*) {
    auto& client = *static_cast<PipeWireClient*>(self);
    // Errors of other objects answer requests. Once the server is gone, more errors than this one follow.
    if (id != PW_ID_CORE) ++client.refused;
    if (id != PW_ID_CORE || status != -EPIPE) return;
    client.lost = true;
    client.onLost();
    client.wake();
}

} // namespace orvane::platform::pipewire
