#include "platform/session_manager/session_manager_client.h"
#include "support/session_manager_peer.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace orvane::platform::session_manager {
namespace {

using namespace std::chrono_literals;
using namespace test;
using testing::HasSubstr;

using Client = std::unique_ptr<SessionManagerClient>;

/// Connects while the test plays the manager.
class Connecting final {
  public:
    explicit Connecting(
        const std::string& url, const ManagerPatience& patience = {.answer = 60s, .open = 60s}
    )
        : thread([this, url, patience] { made = SessionManagerClient::connect(url, "orvane", patience); }) {}

    Result<Client>& result() {
        if (thread.joinable()) thread.join();
        return *made;
    }

    std::string failure() { return result() ? "connected" : result().error().description; }

    ~Connecting() { result(); }

  private:
    std::optional<Result<Client>> made;
    std::thread thread;
};

class ManagedClient : public testing::Test {
  protected:
    void SetUp() override {
        Connecting connection(manager.url());
        ASSERT_TRUE(manager.welcomes());
        EXPECT_EQ(
            manager.message(), "/nsm/server/announce ORVANE :dirty: orvane 1 2 " + std::to_string(::getpid())
        );
        // None of these is a message of the protocol.
        manager.say("/nsm/client/open", "");
        manager.say("/nsm/client/open", "iii", 1, 2, 3);
        manager.say("/nsm/client/open", "sss", "", "Show", "");
        EXPECT_TRUE(manager.receives("/error /nsm/client/open -1 "));
        manager.say("/nsm/client/open", "sss", "/shows/one/ORVANE.nABC", "Show", "ORVANE.nABC");
        auto& made = connection.result();
        ASSERT_TRUE(made) << made.error().description;
        client = std::move(made).value();
    }

    SessionManagerPeer manager;
    Client client;
};

TEST_F(ManagedClient, AnswersARequestOnceItIsDone) {
    EXPECT_EQ(client->session().path, "/shows/one/ORVANE.nABC");
    EXPECT_EQ(client->session().clientID, "ORVANE.nABC");
    client->confirmOpen();
    EXPECT_TRUE(manager.receives("/reply /nsm/client/open "));

    int asked = 0;
    client->setOnSave([&] { ++asked; });
    manager.say("/nsm/client/session_is_loaded", "");
    manager.say("/nsm/client/save", "i", 5);
    manager.say("/nsm/client/save", "");
    EXPECT_TRUE(waitFor([&] {
        client->poll();
        return asked == 1;
    }));
    client->setDirty(false);
    client->setDirty(true);
    client->setDirty(true);
    client->answerSave(Error{"The disk is full."});
    client->setDirty(false);
    client->answerSave(Done{});
    for (const char* expected :
         {"/nsm/client/is_dirty", "/error /nsm/client/save -1 The disk is full.", "/nsm/client/is_clean",
          "/reply /nsm/client/save "})
        EXPECT_TRUE(manager.receives(expected)) << expected;

    manager.say("/nsm/client/open", "sss", "/shows/two/ORVANE.nDEF", "Other", "ORVANE.nDEF");
    manager.say("/nsm/client/save", "");
    EXPECT_TRUE(waitFor([&] {
        client->poll();
        return asked == 2;
    }));
    EXPECT_TRUE(manager.receives("/error /nsm/client/open -8 "));
    EXPECT_EQ(client->session().clientID, "ORVANE.nABC");
}

TEST_F(ManagedClient, AcceptsMessagesFromItsManagerOnly) {
    client->confirmOpen();
    EXPECT_TRUE(manager.receives("/reply /nsm/client/open "));
    SessionManagerPeer stranger;
    stranger.speakToClientOf(manager);
    int asked = 0;
    client->setOnSave([&] { ++asked; });
    stranger.say("/nsm/client/save", "");
    stranger.say("/nsm/client/open", "sss", "/shows/two/ORVANE.nDEF", "Other", "ORVANE.nDEF");
    manager.say("/nsm/client/save", "");
    EXPECT_TRUE(waitFor([&] {
        client->poll();
        return asked > 0;
    }));
    EXPECT_EQ(asked, 1) << "the stranger's came first";
    client->answerSave(Done{});
    EXPECT_TRUE(manager.receives("/reply /nsm/client/save "));
}

TEST(SessionManagerClient, ReachesAManagerByAnyNameOfThisComputer) {
    SessionManagerPeer manager;
    const std::string port = manager.url().substr(manager.url().rfind(':'));
    for (const std::string host : {"localhost", "127.0.1.1", "127.0.0.1"}) {
        Connecting connection("osc.udp://" + host + port + "/");
        ASSERT_TRUE(manager.welcomes()) << host;
        manager.say("/nsm/client/open", "sss", "/shows/one/ORVANE.nABC", "Show", "ORVANE.nABC");
        EXPECT_TRUE(connection.result()) << host;
    }
}

TEST_F(ManagedClient, DoesNotOverwriteASessionThatItCouldNotOpen) {
    client->setOnSave([] { FAIL() << "the session's file would be lost"; });
    client->refuseOpen(ManagerRefusal::badSession, "The file is damaged.");
    EXPECT_TRUE(manager.receives("/error /nsm/client/open -9 The file is damaged."));
    manager.say("/nsm/client/save", "");
    EXPECT_TRUE(manager.receivesWhile("/error /nsm/client/save -6 ", [&] { client->poll(); }));
}

TEST(SessionManagerClient, ReportsWhyItCannotConnect) {
    SessionManagerPeer refusing;
    Connecting refused(refusing.url());
    ASSERT_TRUE(refusing.receives("/nsm/server/announce "));
    refusing.say("/error", "sis", "/nsm/server/announce", -2, "Too new.");
    EXPECT_THAT(refused.failure(), HasSubstr("refuses ORVANE: Too new."));

    SessionManagerPeer idle;
    Connecting idling(idle.url(), {.answer = 60s, .open = 1ms});
    ASSERT_TRUE(idle.welcomes());
    EXPECT_THAT(idling.failure(), HasSubstr("has not asked to open a session"));

    const SessionManagerPeer silent;
    for (const auto& [url, says] :
         {std::pair(silent.url(), "does not answer"),
          {"nonsense", "\"nonsense\" is not the address"},
          {"osc.tcp://127.0.0.1:9/", "is not the address"}}) {
        // The time for opening does not count yet.
        Connecting connection(url, {.answer = 1ms, .open = 24h});
        EXPECT_THAT(connection.failure(), HasSubstr(says));
    }
}

} // namespace
} // namespace orvane::platform::session_manager
