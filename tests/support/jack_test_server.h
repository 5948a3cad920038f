#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace orvane::test {

/// Until it ends, selects for libjack a server that does not exist, with a name unique to this process.
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

/// A JACK server for one test, without hardware and real-time priority. It waits for late clients as long as
/// it can, so that no sample is lost on a busy computer. Must be made before the test opens JACK clients.
class JackTestServer final {
  public:
    struct Format {
        std::uint32_t sampleRate = 48000;
        /// In frames.
        std::uint32_t period = 256;
        std::uint32_t channelCount = 2;
        bool waitsForClients = true;

        /// For the names of tests.
        friend std::ostream& operator<<(std::ostream& out, const Format& format) {
            return out << format.sampleRate << "_Hz_" << format.period << "_frames_" << format.channelCount
                       << "_channels";
        }
    };

    /// Starts the server and waits until clients can open; throws if that fails. `portCount`: the maximum
    /// number of ports of the server and all its clients.
    explicit JackTestServer(Format serverFormat, std::uint32_t portCount = 2048);
    ~JackTestServer();

    /// Ends the server's process with `signal` and waits for it.
    void end(int signal);
    /// Sends its process a signal that does not end it.
    void send(int signal) const;
    /// Starts another server of the same name, at the given rate if any.
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
