#include "support/pipewire_test_server.h"

#include "support/server_process.h"
#include "support/wait_for.h"

#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace orvane::test {

namespace {

constexpr const char* folderVariable = "PIPEWIRE_RUNTIME_DIR";

/// A device node, for a configuration or pw-cli.
std::string node(const std::string& name, const std::string& mediaClass, const std::string& rest) {
    return "{ factory.name = support.null-audio-sink node.name = " + name + " media.class = " + mediaClass
           + " object.linger = true adapter.auto-port-config = { mode = dsp monitor = true position = "
             "preserve } "
           + rest + " }";
}

const std::string loop = node("loop", "Audio/Duplex", "audio.position = [ AUX0 AUX1 AUX2 AUX3 ]");

std::string configurationText() {
    const std::string objects[] = {
        loop, node("card_out", "Audio/Sink", "node.description = \"Card Out\" audio.position = [ FL FR ]"),
        node("card_in", "Audio/Source/Virtual", "node.description = \"Card In\" audio.position = [ FL FR ]")};
    std::string text = R"(
context.properties = {
  core.daemon = true core.name = pipewire-0 link.max-buffers = 16
  default.clock.rate = 48000 default.clock.allowed-rates = [ 44100 48000 ]
  default.clock.quantum = 256 default.clock.min-quantum = 32
}
context.spa-libs = {
  audio.convert.* = audioconvert/libspa-audioconvert
  support.* = support/libspa-support
}
context.modules = [
  { name = libpipewire-module-protocol-native }
  { name = libpipewire-module-metadata }
  { name = libpipewire-module-spa-node-factory }
  { name = libpipewire-module-client-node }
  { name = libpipewire-module-access }
  { name = libpipewire-module-adapter }
  { name = libpipewire-module-link-factory }
]
context.objects = [
  { factory = spa-node-factory
    args = { factory.name = support.node.driver node.name = Dummy-Driver priority.driver = 20000 } }
)";
    for (const std::string& object : objects)
        text += "{ factory = adapter args = " + object + " }\n";
    return text + "]\n";
}

void run(const std::string& command) {
    if (std::system((command + " >/dev/null 2>&1").c_str()) != 0)
        throw std::runtime_error(command + " failed");
}

} // namespace

PipeWireTestServer::PipeWireTestServer() : configuration(folder.add("test.conf", configurationText())) {
    ::setenv(folderVariable, (folder / "").c_str(), 1);
    restart();
}

PipeWireTestServer::~PipeWireTestServer() {
    kill();
    ::unsetenv(folderVariable);
}

void PipeWireTestServer::kill() {
    if (process < 0) return;
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
    process = -1;
}

void PipeWireTestServer::restart() {
    process = startServer({"pipewire", "-c", configuration});
    // The last node is made after the socket.
    if (!waitFor([this] {
            return ::waitpid(process, nullptr, WNOHANG) != 0
                   || std::system("pw-cli info card_in 2>/dev/null | grep -q card_in") == 0;
        })
        || ::kill(process, 0) != 0)
        throw std::runtime_error(
            "No PipeWire server could be started; install the packages pipewire, pipewire-bin and "
            "libspa-0.2-modules."
        );
}

void PipeWireTestServer::unplug() const {
    run("pw-cli destroy loop");
}

void PipeWireTestServer::plug() const {
    run("pw-cli create-node adapter '" + loop + "'");
}

void PipeWireTestServer::set(const std::string& setting, unsigned value) const {
    run("pw-metadata -n settings 0 " + setting + " " + std::to_string(value));
}

} // namespace orvane::test
