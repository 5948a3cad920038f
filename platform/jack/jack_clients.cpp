#include "platform/jack/jack_clients.h"

#include "platform/jack/jack_client.h"
#include "platform/jack/jack_events.h"

#include <jack/metadata.h>
#include <jack/session.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>

namespace orvane::platform::jack {

namespace {

/// How long it may take until all clients know that a server is gone.
constexpr std::chrono::milliseconds longestEnding{500};
constexpr std::chrono::milliseconds pause{1};

/// Waits until the client's notification thread in libjack is idle: closing the client cancels that thread
/// anywhere, and for each notification the thread takes a lock that all clients share.
void settle(jack_client_t* handle, const std::atomic<bool>& isGone) {
    jack_deactivate(handle);
    jack_set_process_callback(handle, nullptr, nullptr);
    jack_set_xrun_callback(handle, nullptr, nullptr);
    jack_set_buffer_size_callback(handle, nullptr, nullptr);
    jack_set_sample_rate_callback(handle, nullptr, nullptr);
    jack_set_port_registration_callback(handle, nullptr, nullptr);
    jack_set_client_registration_callback(handle, nullptr, nullptr);
    // The server answers once the thread has processed this and everything before it.
    if (jack_activate(handle) == 0) {
        jack_deactivate(handle);
        return;
    }
    for (auto waited = pause; !isGone.load() && waited < longestEnding; waited += pause)
        std::this_thread::sleep_for(pause);
}

/// Absent if the server does not assign any.
std::optional<jack_uuid_t> uuidOf(jack_client_t* handle) {
    const std::unique_ptr<char, decltype(&jack_free)> text(jack_client_get_uuid(handle), jack_free);
    jack_uuid_t uuid = JACK_UUID_EMPTY_INITIALIZER;
    if (text == nullptr || jack_uuid_parse(text.get(), &uuid) != 0) return std::nullopt;
    return uuid;
}

} // namespace

JackClients::JackClients(std::string programName) : name(std::move(programName)) {
    const auto ignore = [](const char*) {};
    jack_set_error_function(ignore);
    jack_set_info_function(ignore);
}

std::unique_ptr<JackClient> JackClients::open(std::string_view role, JackEvents& events) {
    // Complete before libjack starts the thread that calls it.
    std::unique_ptr<JackClient> client(new JackClient(*this, events));
    const JackLibraryCall libraryCall(libraryMutex);
    if (isServerGone.load()) {
        if (isOnePlaying()) return nullptr;
        for (JackClient* old : opened) {
            const bool hasBeenTold = old->isGone();
            old->close();
            if (!hasBeenTold) old->events.post(JackEvent::serverGone);
        }
        opened.clear();
        isServerGone.store(false);
    }
    const std::string clientName = name + std::string(role);
    client->handle = jack_client_open(clientName.c_str(), JackNoStartServer, nullptr);
    if (client->handle == nullptr) return nullptr;
    // PipeWire does not call a function set with jack_on_info_shutdown.
    jack_on_shutdown(client->handle, JackClient::markGone, client.get());
    // cppcheck-suppress danglingLifetime ; the destructor removes it
    opened.push_back(client.get());
    if (const auto uuid = uuidOf(client->handle)) client->setPrettyName(*uuid, clientName);
    return client;
}

bool JackClients::areOfPipeWire() {
    // The library states itself what it is, wherever it was found; whether a server runs does not matter.
    return std::string_view(jack_get_version_string()).find("PipeWire") != std::string_view::npos;
}

bool JackClients::areOutdated() {
    const JackLibraryCall libraryCall(libraryMutex);
    return isServerGone.load() && !isOnePlaying();
}

bool JackClients::isOnePlaying() const {
    return std::ranges::any_of(opened, [](const JackClient* client) {
        return client->isPlaying.load() && !client->isGone();
    });
}

JackClient::JackClient(JackClients& owner, JackEvents& clientEvents) : clients(owner), events(clientEvents) {}

JackClient::~JackClient() {
    const JackLibraryCall libraryCall(
        clients.libraryMutex, isGone() ? JackLibraryCall::noPatience : JackLibraryCall::usualPatience
    );
    close();
    std::erase(clients.opened, this);
}

void JackClient::close() {
    if (handle == nullptr) return;
    settle(handle, gone);
    jack_client_close(handle);
    handle = nullptr;
    gone.store(true);
}

void JackClient::setPrettyName(jack_uuid_t subject, const std::string& prettyName) {
    if (JackClients::areOfPipeWire())
        jack_set_property(handle, subject, JACK_METADATA_PRETTY_NAME, prettyName.c_str(), "text/plain");
}

void JackClient::deactivate() {
    const JackLibraryCall libraryCall(clients.libraryMutex);
    if (handle == nullptr) return;
    jack_deactivate(handle);
    if (libraryCall.isBrokenOff()) loseServer();
}

void JackClient::abandon() {
    const JackLibraryCall libraryCall(clients.libraryMutex);
    std::erase(clients.opened, this);
    handle = nullptr;
}

void JackClient::markGone(void* self) {
    // The server may still send notifications, for which this thread takes the lock. It ends by itself
    // afterwards.
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    static_cast<JackClient*>(self)->loseServer();
}

void JackClient::loseServer() {
    gone.store(true);
    clients.isServerGone.store(true);
    events.post(JackEvent::serverGone);
}

} // namespace orvane::platform::jack
