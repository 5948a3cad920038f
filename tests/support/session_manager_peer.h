#pragma once

#include "support/wait_for.h"

#include <lo/lo.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace orvane::test {

/// A scripted session manager on a loopback port. One thread.
class SessionManagerPeer final {
  public:
    SessionManagerPeer() { lo_server_add_method(server.get(), nullptr, nullptr, keep, this); }
    ~SessionManagerPeer() { lo_address_free(client); }

    [[nodiscard]] std::string url() const {
        std::string address = "osc.udp://127.0.0.1:";
        address += std::to_string(lo_server_get_port(server.get()));
        return address;
    }

    /// Waits for a message whose path and arguments start like this; discards it and earlier ones.
    bool receives(const std::string& beginning) {
        return receivesWhile(beginning, [] {});
    }

    /// As above, calling `clientsTask` repeatedly meanwhile.
    template <class Task>
    bool receivesWhile(const std::string& beginning, Task clientsTask) {
        return waitFor([&] {
            clientsTask();
            while (lo_server_recv_noblock(server.get(), 0) > 0) {
            }
            const auto found = std::ranges::find_if(received, [&](const std::string& message) {
                return message.starts_with(beginning);
            });
            if (found == received.end()) return false;
            last = *found;
            received.erase(received.begin(), found + 1);
            return true;
        });
    }

    /// The last message that was awaited.
    [[nodiscard]] const std::string& message() const { return last; }

    /// Sends a message to the client that sent the last one.
    template <class... Arguments>
    void say(const char* path, const char* types, Arguments... arguments) {
        constexpr lo_timetag immediately{0, 1};
        lo_send_from(client, server.get(), immediately, path, types, arguments...);
    }

    /// From now on sends to the client of another peer.
    void speakToClientOf(const SessionManagerPeer& other) {
        lo_address_free(client);
        client = lo_address_new(lo_address_get_hostname(other.client), lo_address_get_port(other.client));
    }

    /// Accepts the client that announces itself.
    bool welcomes() {
        if (!receives("/nsm/server/announce ")) return false;
        say("/reply", "ssss", "/nsm/server/announce", "Welcome", "Peer", ":server-control:");
        return true;
    }

  private:
    static int
    keep(const char* path, const char* types, lo_arg** values, int count, lo_message sent, void* self) {
        auto& peer = *static_cast<SessionManagerPeer*>(self);
        std::string text = path;
        for (int index = 0; index < count; ++index) {
            text += ' ';
            // Arguments are aligned to four bytes, which is less than the union requires.
            std::int32_t number = 0;
            std::memcpy(&number, values[index], sizeof number);
            text +=
                types[index] == 's' ? reinterpret_cast<const char*>(values[index]) : std::to_string(number);
        }
        peer.received.push_back(text);
        lo_address_free(peer.client);
        char* const url = lo_address_get_url(lo_message_get_source(sent));
        peer.client = lo_address_new_from_url(url);
        std::free(url);
        return 0;
    }

    struct FreeServer {
        void operator()(lo_server ended) const { lo_server_free(ended); }
    };
    std::unique_ptr<std::remove_pointer_t<lo_server>, FreeServer> server{lo_server_new(nullptr, nullptr)};
    lo_address client = nullptr;
    std::vector<std::string> received;
    std::string last;
};

} // namespace orvane::test
