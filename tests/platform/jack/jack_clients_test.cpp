#include "platform/jack/jack_audio_driver.h"
#include "platform/jack/jack_client.h"
#include "support/change_log.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/stream_clients.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>
#include <sys/socket.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <set>
#include <string>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::jack;
using namespace orvane::test;
using testing::ElementsAre;

std::set<int> descriptors() {
    std::set<int> open;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        open.insert(std::stoi(entry.path().filename()));
    return open;
}

/// The result of `open`, and a way to make the server lose sight of only the clients opened in it.
template <class Opened>
class ShutOut final {
  public:
    template <class Open>
    explicit ShutOut(Open open) : before(descriptors()), opened(open()), after(descriptors()) {}

    void shutOut() const {
        for (const int descriptor : after)
            if (!before.contains(descriptor)) ::shutdown(descriptor, SHUT_RDWR);
    }

  private:
    std::set<int> before;

  public:
    Opened opened;

  private:
    std::set<int> after;
};

template <class Open>
ShutOut(Open) -> ShutOut<std::invoke_result_t<Open>>;

class JackClientsTest : public testing::Test {
  protected:
    std::unique_ptr<AudioStream> open() {
        return std::move(driver.open("jack:system", true, client)).value();
    }

    /// A server that waits for its clients would wait for one that is shut out.
    JackTestServer server{{.waitsForClients = false}};
    JackClients clients{uniqueJackName("ORVANE")};
    JackAudioDriver driver{clients};
    CountingClient client;
    ChangeLog changes;
    JackEvents events;
};

TEST_F(JackClientsTest, AStreamContinuesIfAnotherClientIsShutOut) {
    const auto watch = driver.watch("jack:system", changes.listener());
    const std::unique_ptr<AudioStream> stream = open();
    ASSERT_EQ(stream->start(), noErr);
    const ShutOut other([this] { return clients.open(" other", events); });
    other.shutOut();
    ASSERT_EQ(events.take(), static_cast<std::uint32_t>(JackEvent::serverGone));
    EXPECT_EQ(clients.open(" next", events), nullptr);
    EXPECT_EQ(driver.devices().size(), 1U);
    client.waitFor(10);

    stream->stop();
    const std::size_t cycles = client.cycles();
    EXPECT_NE(clients.open(" next", events), nullptr);
    EXPECT_THAT(changes.waitFor(1), ElementsAre(AudioDeviceChange::died));
    EXPECT_EQ(stream->start(), kAudioHardwareBadDeviceError);
    EXPECT_EQ(client.cycles(), cycles);
}

TEST_F(JackClientsTest, AStreamEndsEvenIfTheServerHangs) {
    std::unique_ptr<AudioStream> stream = open();
    ASSERT_EQ(stream->start(), noErr);
    client.waitFor(1);
    server.send(SIGSTOP);
    stream->stop();
    const std::size_t cycles = client.cycles();
    stream.reset();
    server.send(SIGCONT);
    ASSERT_TRUE(waitFor([this] { return driver.devices().size() == 1; }));
    EXPECT_EQ(client.cycles(), cycles);
    stream = open();
    ASSERT_EQ(stream->start(), noErr);
    client.waitFor(1);
}

TEST_F(JackClientsTest, TheNextStreamIsWatchedIfOnlyTheLastWasShutOut) {
    {
        ChangeLog ofFirst;
        const auto watch = driver.watch("jack:system", ofFirst.listener());
        const ShutOut first([this] { return open(); });
        ASSERT_EQ(first.opened->start(), noErr);
        first.shutOut();
        EXPECT_THAT(ofFirst.waitFor(1), ElementsAre(AudioDeviceChange::died));
    }
    const auto watch = driver.watch("jack:system", changes.listener());
    const std::unique_ptr<AudioStream> next = open();
    ASSERT_EQ(next->start(), noErr);
    client.waitFor(1);
    JackPeer peer("peer", 1);
    ASSERT_TRUE(peer.setBufferSize(512));
    EXPECT_THAT(changes.waitFor(1), ElementsAre(AudioDeviceChange::bufferSize));
}

} // namespace
