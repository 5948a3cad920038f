#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace orvane::test {

/// Names the process's JACK server for libjack as one that does not exist, other than that of any other
/// process, until it ends.
class JackServerName final {
  public:
    JackServerName();
    ~JackServerName();
    JackServerName(const JackServerName&) = delete;
    JackServerName& operator=(const JackServerName&) = delete;

    [[nodiscard]] const std::string& text() const { return name; }

  private:
    std::string name;
};

/// A JACK server of a test's own, without hardware and without real-time priority. It waits for late clients
/// as long as it can, so that no sample is lost on a busy machine. Made before the test opens JACK clients.
class JackTestServer final {
  public:
    struct Format {
        std::uint32_t sampleRate = 48000;
        /// In frames.
        std::uint32_t period = 256;
        std::uint32_t channelCount = 2;
        bool waitsForClients = true;

        /// As part of the name of a test.
        friend std::ostream& operator<<(std::ostream& out, const Format& format) {
            return out << format.sampleRate << "_Hz_" << format.period << "_frames_" << format.channelCount
                       << "_channels";
        }
    };

    /// Starts it and returns when clients can open; throws where it cannot be started. `portCount`: ports
    /// that the server and all of its clients can have together.
    explicit JackTestServer(Format serverFormat, std::uint32_t portCount = 2048);
    ~JackTestServer();
    JackTestServer(const JackTestServer&) = delete;
    JackTestServer& operator=(const JackTestServer&) = delete;

    /// Ends the server's process with `signal` and returns when it has ended.
    void end(int signal);
    /// Sends its process a signal that it does not end by.
    void send(int signal) const;
    /// Starts it again, as another one under the same name, at that rate where one is given.
    void restart(std::optional<std::uint32_t> sampleRate = {});

  private:
    void launch();
    [[nodiscard]] bool waitUntilReady();
    [[nodiscard]] bool hasEnded();

    JackServerName name;
    Format format;
    std::uint32_t mostPorts;
    pid_t process = -1;
};

} // namespace orvane::test
