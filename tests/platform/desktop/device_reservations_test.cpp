#include "desktop_bus_fixture.h"

#include "platform/desktop/device_reservations.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane::platform::desktop {
namespace {

constexpr const char* card = "org.freedesktop.ReserveDevice1.Audio3";
constexpr const char* path = "/org/freedesktop/ReserveDevice1/Audio3";
constexpr const char* interface = "org.freedesktop.ReserveDevice1";
constexpr auto forEver = 24h;

/// Another program, which uses the bus without our code.
class Program final {
  public:
    Program() {
        sd_bus* opened = nullptr;
        EXPECT_GE(sd_bus_open_user(&opened), 0);
        bus.reset(opened);
        sd_bus_add_filter(opened, nullptr, serveRequest, this);
    }

    /// Takes the card's name, and allows others to replace it as the protocol requires; returns whether it
    /// owns it.
    bool take() { return sd_bus_request_name(bus.get(), card, SD_BUS_NAME_ALLOW_REPLACEMENT) >= 0; }

    void serve() {
        while (sd_bus_process(bus.get(), nullptr) > 0) {
        }
    }

    /// Requests the card; the answer arrives when it is served.
    void ask(std::int32_t priority) {
        answer.reset();
        sd_bus_call_method_async(
            bus.get(), nullptr, card, path, interface, "RequestRelease", keepAnswer, this, "i", priority
        );
    }
    bool answerTo(std::int32_t priority) {
        ask(priority);
        EXPECT_TRUE(waitFor([this] {
            serve();
            return answer.has_value();
        }));
        return *answer;
    }

    std::string text(const char* property) {
        char* read = nullptr;
        sd_bus_get_property_string(bus.get(), card, path, interface, property, nullptr, &read);
        const std::unique_ptr<char, decltype(&std::free)> kept(read, std::free);
        return read == nullptr ? "none" : read;
    }
    std::int32_t number(const char* property) {
        std::int32_t read = -1;
        sd_bus_get_property_trivial(bus.get(), card, path, interface, property, nullptr, 'i', &read);
        return read;
    }

    /// The answer to requests for the card, and the priorities of those requests.
    bool lets = false;
    std::vector<std::int32_t> requests;
    std::optional<bool> answer;

  private:
    static int serveRequest(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
        auto& program = *static_cast<Program*>(self);
        std::int32_t priority = 0;
        if (sd_bus_message_is_method_call(message, interface, "RequestRelease") <= 0) return 0;
        sd_bus_message_read(message, "i", &priority);
        program.requests.push_back(priority);
        return sd_bus_reply_method_return(message, "b", program.lets ? 1 : 0);
    }
    static int keepAnswer(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
        int value = 0;
        sd_bus_message_read(message, "b", &value);
        static_cast<Program*>(self)->answer = value != 0;
        return 1;
    }

    struct Close {
        void operator()(sd_bus* ended) const { sd_bus_flush_close_unref(ended); }
    };
    std::unique_ptr<sd_bus, Close> bus;
};

TEST(DeviceReservations, KeepACardUntilAProgramOfHigherPriorityAsks) {
    const DesktopPeer desktop;
    DeviceReservations reservations(forEver);
    std::atomic<int> requests = 0;
    auto lease = reservations.reserve(3, [&] { ++requests; });
    auto second = reservations.reserve(3, {});
    ASSERT_TRUE(lease && second);
    Program other;
    EXPECT_FALSE(other.take());
    EXPECT_EQ(other.text("ApplicationName"), "ORVANE");
    EXPECT_EQ(other.text("ApplicationDeviceName"), "hw:3");
    EXPECT_EQ(other.number("Priority"), 10);
    EXPECT_FALSE(other.answerTo(10)) << "which is no more important";
    EXPECT_EQ(requests, 0);

    other.ask(11);
    EXPECT_TRUE(waitFor([&] { return requests == 1; }));
    EXPECT_FALSE(reservations.reserve(3, {})) << "though it is asked for";
    other.serve();
    EXPECT_FALSE(other.answer) << "before the card is closed";
    lease.reset();
    second.reset();
    EXPECT_TRUE(waitFor([&] {
        other.serve();
        return other.answer.has_value();
    }));
    EXPECT_TRUE(*other.answer);
    EXPECT_TRUE(waitFor([&] { return other.take(); }));
}

TEST(DeviceReservations, AskTheOwnerOfACardToReleaseIt) {
    const DesktopPeer desktop;
    Program owner;
    DeviceReservations reservations(0ms);
    ASSERT_TRUE(owner.take());
    const auto reserve = [&] { return reservations.reserve(3, {}); };
    EXPECT_FALSE(answerOf(owner, reserve));
    owner.lets = true;
    EXPECT_TRUE(answerOf(owner, reserve));
    EXPECT_THAT(owner.requests, ElementsAre(10, 10));
}

TEST(DeviceReservations, ReleaseTheNameSomeTimeAfterTheLastLease) {
    const DesktopPeer desktop;
    Program other;
    {
        DeviceReservations kept(forEver);
        EXPECT_TRUE(kept.reserve(3, {}));
        EXPECT_FALSE(other.take()) << "between two uses";
        EXPECT_TRUE(kept.reserve(3, {}));
        EXPECT_TRUE(other.answerTo(20)) << "as nothing uses the card";
    }
    DeviceReservations brief(0ms);
    EXPECT_TRUE(brief.reserve(3, {}));
    EXPECT_TRUE(waitFor([&] { return other.take(); }));
}

TEST(DeviceReservations, SucceedWithoutABus) {
    DeviceReservations reservations(0ms);
    EXPECT_TRUE(reservations.reserve(3, {}));
    DesktopPeer desktop;
    desktop.freeze();
    EXPECT_TRUE(reservations.reserve(3, {}));
}

} // namespace
} // namespace orvane::platform::desktop
