#pragma once

#include "platform/base/file_descriptor.h"
#include "support/bus_address.h"
#include "support/server_process.h"
#include "support/temporary_folder.h"
#include "support/wait_for.h"

#include <systemd/sd-bus.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {

/// A desktop on a message bus of its own, which serves as both buses of this process and its children: a
/// login manager, a notification server and RealtimeKit, with scripted behaviour. One thread.
class DesktopPeer final {
  public:
    enum class Manner { grants, refuses, isSilent };
    /// RealtimeKit's highest priority and the computing time that it allows, in microseconds.
    static constexpr int highestPriority = 20;
    static constexpr std::int64_t longestComputingTime = 200000;

    DesktopPeer() {
        setBusAddress(address.c_str());
        daemon = startServer({"dbus-daemon", "--config-file=" + configuration.string(), "--nofork"});
        if (!waitFor([this] { return connect(); }))
            throw std::runtime_error("No message bus could be started; install the package dbus-daemon.");
        sd_bus_add_filter(bus.get(), nullptr, serveCall, this);
        for (const char* const service : services)
            sd_bus_request_name(bus.get(), service, 0);
    }
    ~DesktopPeer() {
        ::kill(daemon, SIGKILL);
        ::waitpid(daemon, nullptr, 0);
        setBusAddress(noBus);
    }

    /// How requests for locks are answered from now on.
    Manner manner = Manner::grants;
    /// The calls received, such as "Inhibit sleep:idle Who Why block" and "Notify Who 0 icon | Title | Text |
    /// urgency".
    std::vector<std::string> calls;

    /// Processes pending calls after the bus has served all its clients.
    void serve() {
        if (isFrozen) return;
        sd_bus_call_method(
            bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Peer", "Ping",
            nullptr, nullptr, ""
        );
        while (sd_bus_process(bus.get(), nullptr) > 0) {
        }
    }

    /// Grants the unanswered requests.
    void grantLate() {
        for (const auto& call : std::exchange(unanswered, {}))
            grant(call.get());
    }

    /// The number of locks that are held.
    [[nodiscard]] std::size_t locks() const {
        return static_cast<std::size_t>(std::ranges::count_if(ends, [](const auto& end) {
            pollfd state{end.number(), 0, 0};
            return ::poll(&state, 1, 0) == 0;
        }));
    }

    /// Whether the sender of the last call is still on the bus.
    [[nodiscard]] bool hasCaller() const {
        sd_bus_creds* credentials = nullptr;
        const int status = sd_bus_get_name_creds(bus.get(), caller.c_str(), 0, &credentials);
        sd_bus_creds_unref(credentials);
        return status >= 0;
    }

    /// Removes the desktop from the bus.
    void close() {
        for (const char* const service : services)
            sd_bus_release_name(bus.get(), service);
    }

    /// Stops the bus process: it accepts connections and does nothing with them.
    void freeze() {
        isFrozen = true;
        ::kill(daemon, SIGSTOP);
    }

  private:
    struct CloseConnection {
        void operator()(sd_bus* ended) const { sd_bus_close_unref(ended); }
    };
    struct DropMessage {
        void operator()(sd_bus_message* served) const { sd_bus_message_unref(served); }
    };

    bool connect() {
        sd_bus* opened = nullptr;
        sd_bus_new(&opened);
        bus.reset(opened);
        sd_bus_set_address(opened, address.c_str());
        sd_bus_set_bus_client(opened, 1);
        return sd_bus_start(opened) >= 0;
    }

    static int serveCall(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
        auto& peer = *static_cast<DesktopPeer*>(self);
        if (sd_bus_message_is_method_call(call, "org.freedesktop.login1.Manager", "Inhibit") > 0)
            peer.inhibit(call);
        else if (sd_bus_message_is_method_call(call, "org.freedesktop.Notifications", "Notify") > 0)
            peer.notify(call);
        else if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Get") > 0)
            giveProperty(call);
        else if (sd_bus_message_is_method_call(call, realtimeKit, "MakeThreadRealtimeWithPID") > 0)
            peer.makeRealtime(call);
        else
            return 0;
        peer.caller = sd_bus_message_get_sender(call);
        return 1;
    }

    void inhibit(sd_bus_message* call) {
        std::array<const char*, 4> words{};
        sd_bus_message_read(call, "ssss", &words[0], &words[1], &words[2], &words[3]);
        std::string& seen = calls.emplace_back("Inhibit");
        for (const char* const word : words)
            (seen += ' ') += word;
        switch (manner) {
        case Manner::grants:
            return grant(call);
        case Manner::refuses:
            sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "Not in this house");
            return;
        case Manner::isSilent:
            unanswered.emplace_back(sd_bus_message_ref(call));
        }
    }

    void grant(sd_bus_message* call) {
        std::array<int, 2> pipe{};
        if (::pipe2(pipe.data(), O_CLOEXEC) != 0) throw std::runtime_error("There is no pipe.");
        const platform::FileDescriptor lock(pipe[1]);
        ends.emplace_back(pipe[0]);
        sd_bus_reply_method_return(call, "h", lock.number());
    }

    void notify(sd_bus_message* call) {
        std::array<const char*, 4> words{};
        std::uint32_t replaces = 0;
        std::uint8_t urgency = 0;
        sd_bus_message_read(call, "susss", &words[0], &replaces, &words[1], &words[2], &words[3]);
        sd_bus_message_skip(call, "as");
        sd_bus_message_enter_container(call, 'a', "{sv}");
        sd_bus_message_read(call, "{sv}", nullptr, "y", &urgency);
        calls.push_back(
            std::string("Notify ") + words[0] + ' ' + std::to_string(replaces) + ' ' + words[1] + " | "
            + words[2] + " | " + words[3] + " | " + std::to_string(urgency)
        );
        sd_bus_reply_method_return(call, "u", 1U);
    }

    /// A property of RealtimeKit.
    static void giveProperty(sd_bus_message* call) {
        const char* interface = nullptr;
        const char* name = nullptr;
        sd_bus_message_read(call, "ss", &interface, &name);
        if (name == std::string_view("MaxRealtimePriority"))
            sd_bus_reply_method_return(call, "v", "i", highestPriority);
        else if (name == std::string_view("RTTimeUSecMax"))
            sd_bus_reply_method_return(call, "v", "x", longestComputingTime);
    }

    /// Refuses, as the real service does, a process whose computing time is not bounded.
    void makeRealtime(sd_bus_message* call) {
        std::uint64_t process = 0;
        std::uint64_t thread = 0;
        std::uint32_t priority = 0;
        sd_bus_message_read(call, "ttu", &process, &thread, &priority);
        rlimit limit{};
        ::prlimit(static_cast<pid_t>(process), RLIMIT_RTTIME, nullptr, &limit);
        if (manner != Manner::grants || limit.rlim_max > static_cast<rlim_t>(longestComputingTime)) {
            sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "Not in this house");
            return;
        }
        calls.push_back("Realtime " + std::to_string(thread) + ' ' + std::to_string(priority));
        sd_bus_reply_method_return(call, "");
    }

    static constexpr const char* realtimeKit = "org.freedesktop.RealtimeKit1";
    static constexpr std::array services{
        "org.freedesktop.login1", "org.freedesktop.Notifications", realtimeKit};

    const TemporaryFolder folder;
    const std::string address = "unix:path=" + (folder / "bus").string();
    const std::filesystem::path configuration = folder.add(
        "bus.conf", "<busconfig><type>session</type><listen>" + address
                        + "</listen><policy context='default'><allow send_destination='*'/>"
                          "<allow receive_sender='*'/><allow own='*'/>"
                          "</policy></busconfig>"
    );
    pid_t daemon = -1;
    bool isFrozen = false;
    std::unique_ptr<sd_bus, CloseConnection> bus;
    std::vector<std::unique_ptr<sd_bus_message, DropMessage>> unanswered;
    /// Our ends of the locks' pipes; a released lock hangs up.
    std::vector<platform::FileDescriptor> ends;
    std::string caller;
};

} // namespace orvane::test
