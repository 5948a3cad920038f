#include "platform/jack/jack_midi_driver.h"

#include "platform/jack/jack_events.h"
#include "platform/jack/jack_midi_input.h"
#include "platform/jack/jack_midi_own_source.h"
#include "platform/jack/jack_midi_sources.h"
#include "platform/jack/jack_server.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace orvane::platform::jack {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view controlRole = " MIDI control";
constexpr std::chrono::seconds retryInterval{2};

} // namespace

struct JackMIDIDriver::State {
    State(JackClients& jackClients, SystemLog* systemLog) : clients(jackClients), log(systemLog) {}

    ~State() {
        events.post(JackEvent::finished);
        thread.join();
    }

    std::vector<MIDIDriverSource> sources() {
        const std::scoped_lock lock(mutex);
        return look();
    }

    /// Returns the current sources; first opens the client if it is time to. Requires the mutex.
    std::vector<MIDIDriverSource> look() {
        if (!server.isOpen() && Clock::now() < nextAttempt) return {};
        const std::optional<std::vector<JackPort>> ports = server.midiSources();
        if (!ports) {
            nextAttempt = Clock::now() + retryInterval;
            return {};
        }
        for (const auto& input : inputs)
            hasLostConnections |= input->open();
        return jackMIDISources(*ports);
    }

    void run() {
        while (true) {
            const std::uint32_t taken = waitForEvents();
            if (contains(taken, JackEvent::finished)) return;
            if (contains(taken, JackEvent::messages)) deliver();
            if (taken != static_cast<std::uint32_t>(JackEvent::messages)) tellChanges();
        }
    }

    /// Returns no events if it is time to try to open a client again.
    std::uint32_t waitForEvents() {
        std::unique_lock lock(mutex);
        const bool waitsForServer = listener && !server.isOpen();
        const auto wait = nextAttempt - Clock::now();
        lock.unlock();
        if (!waitsForServer) return events.take();
        return events.takeWithin(std::max<Clock::duration>(wait, {}));
    }

    void deliver() {
        std::unique_lock lock(mutex);
        const std::vector<std::shared_ptr<JackMIDIInput>> receiving = inputs;
        lock.unlock();
        for (const auto& input : receiving)
            input->deliver();
    }

    void tellChanges() {
        std::unique_lock lock(mutex);
        if (!listener) return;
        std::vector<MIDIDriverSource> now = look();
        if (!std::exchange(hasLostConnections, false) && now == told) return;
        told = std::move(now);
        lock.unlock();
        listener();
    }

    JackClients& clients;
    SystemLog* log;
    JackEvents events;
    std::mutex mutex;
    JackServer server{clients, events, controlRole};
    /// The earliest time for the next attempt to open a client.
    Clock::time_point nextAttempt;
    std::vector<std::shared_ptr<JackMIDIInput>> inputs;
    /// Set once, before the first change.
    SourcesListener listener;
    /// An input had to open a new client, and the listener has not been notified yet.
    bool hasLostConnections = false;
    /// The sources that the listener knows.
    std::vector<MIDIDriverSource> told;
    /// The last member: the thread uses all others.
    std::thread thread{[this] { run(); }};
};

class JackMIDIDriver::Input final : public MIDIDriverInput {
  public:
    Input(State& driver, std::string_view name, Receiver receiver)
        : state(driver),
          input(std::make_shared<JackMIDIInput>(
              state.clients, state.events, std::string(name), std::move(receiver), state.log
          )) {
        const std::scoped_lock lock(state.mutex);
        state.inputs.push_back(input);
        if (state.server.isOpen()) input->open();
    }

    ~Input() override {
        const std::scoped_lock lock(state.mutex);
        std::erase(state.inputs, input);
        input->close();
    }

    OSStatus connect(const std::string& address) override {
        const std::scoped_lock lock(state.mutex);
        return input->connect(address);
    }

    void disconnect(const std::string& address) override {
        const std::scoped_lock lock(state.mutex);
        input->disconnect(address);
    }

  private:
    State& state;
    std::shared_ptr<JackMIDIInput> input;
};

JackMIDIDriver::JackMIDIDriver(JackClients& clients, SystemLog* log)
    : state(std::make_unique<State>(clients, log)) {}

JackMIDIDriver::~JackMIDIDriver() = default;

std::vector<MIDIDriverSource> JackMIDIDriver::sources() {
    return state->sources();
}

void JackMIDIDriver::setSourcesListener(SourcesListener listener) {
    const std::scoped_lock lock(state->mutex);
    state->listener = std::move(listener);
    state->told = state->look();
    // The thread may be waiting without a limit.
    state->events.post(JackEvent::portsAdded);
}

std::unique_ptr<MIDIDriverInput> JackMIDIDriver::openInput(std::string_view name, Receiver receiver) {
    return std::make_unique<Input>(*state, name, std::move(receiver));
}

Result<std::unique_ptr<MIDIOwnSource>, OSStatus> JackMIDIDriver::createSource(std::string_view name) {
    return JackMIDIOwnSource::create(state->clients, name);
}

} // namespace orvane::platform::jack
