#include "platform/pipewire/pipewire_midi_driver.h"

#include "platform/pipewire/pipewire_midi_ports.h"
#include "platform/pipewire/pipewire_midi_sources.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace orvane::platform::pipewire {

struct PipeWireMIDIDriver::State {
    State(PipeWireGraph& ofServer, SystemLog* systemLog) : graph(ofServer), log(systemLog) {}

    ~State() {
        events.post(MIDIEvent::finished);
        thread.join();
    }

    std::vector<MIDIDriverSource> sources() {
        if (!graph.isServerRunning()) return {};
        const PipeWireGraph::Lock lock(graph);
        return pipeWireMIDISources(graph.objects());
    }

    void run() {
        while (true) {
            const std::uint32_t taken = events.take();
            if (contains(taken, MIDIEvent::finished)) return;
            if (contains(taken, MIDIEvent::messages)) deliver();
            if (contains(taken, MIDIEvent::graphChanged)) tellChanges();
        }
    }

    void deliver() {
        std::unique_lock lock(mutex);
        const std::vector<std::shared_ptr<PipeWireMIDIInput>> receiving = inputs;
        lock.unlock();
        for (const auto& input : receiving)
            input->deliver();
    }

    void tellChanges() {
        std::unique_lock lock(mutex);
        if (!listener) return;
        std::vector<MIDIDriverSource> now = sources();
        bool hasLostConnections = false;
        for (const auto& input : inputs)
            hasLostConnections |= input->open();
        if (!hasLostConnections && now == told) return;
        told = std::move(now);
        lock.unlock();
        listener();
    }

    PipeWireGraph& graph;
    SystemLog* log;
    MIDIEvents events;
    std::mutex mutex;
    std::vector<std::shared_ptr<PipeWireMIDIInput>> inputs;
    /// Set once, before the first change.
    SourcesListener listener;
    /// The sources that the listener knows.
    std::vector<MIDIDriverSource> told;
    PipeWireGraph::Observer observer{graph, [this] { events.post(MIDIEvent::graphChanged); }};
    /// The last member: the thread uses all others.
    std::thread thread{[this] { run(); }};
};

class PipeWireMIDIDriver::Input final : public MIDIDriverInput {
  public:
    Input(State& driver, std::string_view name, Receiver receiver)
        : state(driver),
          input(std::make_shared<PipeWireMIDIInput>(
              state.graph, state.events, std::string(name), std::move(receiver), state.log
          )) {
        const std::scoped_lock lock(state.mutex);
        state.inputs.push_back(input);
        input->open();
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
    std::shared_ptr<PipeWireMIDIInput> input;
};

PipeWireMIDIDriver::PipeWireMIDIDriver(PipeWireGraph& graph, SystemLog* log)
    : state(std::make_unique<State>(graph, log)) {}

PipeWireMIDIDriver::~PipeWireMIDIDriver() = default;

std::vector<MIDIDriverSource> PipeWireMIDIDriver::sources() {
    return state->sources();
}

void PipeWireMIDIDriver::setSourcesListener(SourcesListener listener) {
    const std::scoped_lock lock(state->mutex);
    state->listener = std::move(listener);
    state->told = state->sources();
}

std::unique_ptr<MIDIDriverInput> PipeWireMIDIDriver::openInput(std::string_view name, Receiver receiver) {
    return std::make_unique<Input>(*state, name, std::move(receiver));
}

Result<std::unique_ptr<MIDIOwnSource>, OSStatus> PipeWireMIDIDriver::createSource(std::string_view name) {
    return PipeWireMIDIOwnSource::create(state->graph, name);
}

} // namespace orvane::platform::pipewire
