#include "platform/session_manager/session_manager_client.h"

#include <fmt/format.h>
#include <lo/lo.h>

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace orvane::platform::session_manager {

namespace {

constexpr const char* announcePath = "/nsm/server/announce";
constexpr const char* openPath = "/nsm/client/open";
constexpr const char* savePath = "/nsm/client/save";
constexpr int protocolMajor = 1;
constexpr int protocolMinor = 2;
/// More than a manager sends at once, and few enough to keep the main thread responsive.
constexpr int mostMessagesAPoll = 16;
/// The only transport that managers use.
constexpr std::string_view urlBeginning = "osc.udp://";

struct FreeAddress {
    void operator()(lo_address address) const { lo_address_free(address); }
};
struct FreeServer {
    void operator()(lo_server server) const { lo_server_free(server); }
};
using Address = std::unique_ptr<std::remove_pointer_t<lo_address>, FreeAddress>;
using Server = std::unique_ptr<std::remove_pointer_t<lo_server>, FreeServer>;

/// Suppresses liblo's output: missing answers report the same failures.
void suppressOutput(int /*number*/, const char* /*message*/, const char* /*path*/) {}

/// The source address of messages from a manager at `host`: a manager anywhere on loopback answers from its
/// first address.
std::optional<sockaddr_storage> peerAddress(const char* host, const char* port, int family) {
    addrinfo wanted{};
    wanted.ai_family = family;
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host, port, &wanted, &found) != 0) return std::nullopt;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> all(found, ::freeaddrinfo);
    sockaddr_storage peer{};
    std::memcpy(&peer, found->ai_addr, found->ai_addrlen);
    if (family == AF_INET) {
        auto& address = reinterpret_cast<sockaddr_in&>(peer).sin_addr.s_addr;
        if (ntohl(address) >> 24U == IN_LOOPBACKNET) address = htonl(INADDR_LOOPBACK);
    }
    return peer;
}

/// Connects the port to the manager's address, so that it receives from no other, and binds it to loopback if
/// the manager is there. Returns false if that address is unknown.
bool receiveOnlyFrom(lo_address manager, int port) {
    sockaddr_storage own{};
    socklen_t size = sizeof own;
    if (::getsockname(port, reinterpret_cast<sockaddr*>(&own), &size) != 0) return false;
    const auto peer =
        peerAddress(lo_address_get_hostname(manager), lo_address_get_port(manager), own.ss_family);
    return peer && ::connect(port, reinterpret_cast<const sockaddr*>(&*peer), size) == 0;
}

/// The text of a string argument. Arguments are aligned to four bytes, which is less than the union requires.
const char* text(const lo_arg* argument) {
    return reinterpret_cast<const char*>(argument);
}

} // namespace

/// The OSC port and the state of the protocol. Not movable: liblo keeps pointers to it.
class SessionManagerClient::Connection final {
  public:
    Connection(Address address, Server port) : manager(std::move(address)), server(std::move(port)) {
        add<&Connection::onReply>("/reply", "ssss");
        add<&Connection::onError>("/error", "sis");
        add<&Connection::onOpen>(openPath, "sss");
        add<&Connection::onSave>(savePath, "");
    }

    void announce(const std::string& executable) {
        send(
            announcePath, "sssiii", "ORVANE", ":dirty:", executable.c_str(), protocolMajor, protocolMinor,
            static_cast<int>(::getpid())
        );
    }

    /// Serves messages until a session is opened or refused, or the time is over.
    void waitForOpen(const ManagerPatience& patience) {
        const auto isDecided = [this] { return session || refusal; };
        serveUntil([&] { return isAnnounced || isDecided(); }, patience.answer);
        if (isAnnounced) serveUntil(isDecided, patience.open);
    }

    void poll() {
        for (int served = 0; served < mostMessagesAPoll; ++served)
            if (lo_server_recv_noblock(server.get(), 0) <= 0) return;
    }

    void reply(const char* request, const char* text) { send("/reply", "ss", request, text); }

    void refuse(const char* request, ManagerRefusal why, const char* text) {
        send("/error", "sis", request, static_cast<int>(why), text);
    }

    void tellDirty(bool dirty) {
        if (std::exchange(isDirty, dirty) == dirty) return;
        send(dirty ? "/nsm/client/is_dirty" : "/nsm/client/is_clean", "");
    }

    std::optional<SessionPlace> session;
    std::optional<std::string> refusal;
    bool isAnnounced = false;
    bool isOpen = false;
    std::function<void()> save;

  private:
    template <class Condition>
    void serveUntil(Condition isMet, std::chrono::milliseconds patience) {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (!isMet()) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0 || isRefused()) return;
            lo_server_recv_noblock(server.get(), static_cast<int>(left.count()));
        }
    }

    /// Whether no program listens at the manager's address.
    [[nodiscard]] bool isRefused() const {
        int error = 0;
        socklen_t size = sizeof error;
        ::getsockopt(lo_server_get_socket_fd(server.get()), SOL_SOCKET, SO_ERROR, &error, &size);
        return error == ECONNREFUSED;
    }

    template <void (Connection::*handle)(lo_arg**)>
    void add(const char* path, const char* types) {
        lo_server_add_method(
            server.get(), path, types,
            [](const char*, const char*, lo_arg** arguments, int, lo_message, void* self) {
                (static_cast<Connection*>(self)->*handle)(arguments);
                return 0;
            },
            this
        );
    }

    template <class... Arguments>
    void send(const char* path, const char* types, Arguments... arguments) {
        constexpr lo_timetag immediately{0, 1};
        lo_send_from(manager.get(), server.get(), immediately, path, types, arguments...);
    }

    void onReply(lo_arg** arguments) {
        if (std::string_view(text(arguments[0])) == announcePath) isAnnounced = true;
    }

    void onError(lo_arg** arguments) {
        if (!isAnnounced && std::string_view(text(arguments[0])) == announcePath)
            refusal = text(arguments[2]);
    }

    void onOpen(lo_arg** arguments) {
        if (session)
            return refuse(openPath, ManagerRefusal::notNow, "A session is open; ORVANE opens one at a time.");
        const std::string_view path = text(arguments[0]);
        const std::string_view clientID = text(arguments[2]);
        if (path.empty() || clientID.empty())
            return refuse(openPath, ManagerRefusal::general, "The session has no path or no client id.");
        session = {.path = path, .clientID = std::string(clientID)};
    }

    void onSave(lo_arg** /*arguments*/) {
        if (isOpen && save) return save();
        refuse(savePath, ManagerRefusal::noSessionOpen, "No session of the manager is open.");
    }

    Address manager;
    Server server;
    bool isDirty = false;
};

Result<std::unique_ptr<SessionManagerClient>> SessionManagerClient::connect(
    const std::string& url, const std::string& executable, const ManagerPatience& patience
) {
    // liblo would print a complaint about any other address.
    Address manager(url.starts_with(urlBeginning) ? lo_address_new_from_url(url.c_str()) : nullptr);
    if (!manager) return Error{fmt::format("NSM_URL \"{}\" is not the address of a session manager.", url)};
    Server server(lo_server_new_with_proto(nullptr, LO_UDP, suppressOutput));
    if (!server) return Error{"No network port is available for the session manager."};
    if (!receiveOnlyFrom(manager.get(), lo_server_get_socket_fd(server.get())))
        return Error{fmt::format("The host of the session manager at {} is unknown.", url)};
    auto connection = std::make_unique<Connection>(std::move(manager), std::move(server));
    connection->announce(executable);
    connection->waitForOpen(patience);
    if (connection->refusal)
        return Error{fmt::format("The session manager at {} refuses ORVANE: {}", url, *connection->refusal)};
    if (!connection->session)
        return Error{fmt::format(
            "The session manager at {} {}.", url,
            connection->isAnnounced ? "has not asked to open a session" : "does not answer"
        )};
    return std::unique_ptr<SessionManagerClient>(new SessionManagerClient(std::move(connection)));
}

SessionManagerClient::SessionManagerClient(std::unique_ptr<Connection> established)
    : connection(std::move(established)) {}

SessionManagerClient::~SessionManagerClient() = default;

const SessionPlace& SessionManagerClient::session() const {
    return *connection->session;
}

void SessionManagerClient::confirmOpen() {
    connection->isOpen = true;
    connection->reply(openPath, "The session is open.");
}

void SessionManagerClient::refuseOpen(ManagerRefusal why, const std::string& sentence) {
    connection->refuse(openPath, why, sentence.c_str());
}

void SessionManagerClient::setOnSave(std::function<void()> save) {
    connection->save = std::move(save);
}

void SessionManagerClient::answerSave(const Result<Done>& saved) {
    if (saved)
        connection->reply(savePath, "The session is saved.");
    else
        connection->refuse(savePath, ManagerRefusal::general, saved.error().description.c_str());
}

void SessionManagerClient::setDirty(bool isDirty) {
    connection->tellDirty(isDirty);
}

void SessionManagerClient::poll() {
    connection->poll();
}

} // namespace orvane::platform::session_manager
