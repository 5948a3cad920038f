#include "platform/virtual/virtual_midi_driver.h"

#include <utility>

namespace orvane::platform::virtual_devices {

namespace {

struct Connections {
    MIDIDriver::Receiver receiver;
    std::set<std::string> addresses;
};

} // namespace

struct VirtualMIDIDriver::State {
    std::mutex mutex;
    /// By the number that is the source's address.
    std::map<std::uint64_t, std::string> names;
    std::uint64_t lastNumber = 0;
    std::set<Connections*> inputs;
    SourcesListener listener;

    std::vector<Receiver> receiversOf(const std::string& address) {
        const std::scoped_lock lock(mutex);
        std::vector<Receiver> receivers;
        for (const Connections* input : inputs)
            if (input->addresses.contains(address)) receivers.push_back(input->receiver);
        return receivers;
    }

    void tellListener() {
        std::unique_lock lock(mutex);
        const SourcesListener told = listener;
        lock.unlock();
        if (told) told();
    }
};

class VirtualMIDIDriver::Input final : public MIDIDriverInput {
  public:
    Input(std::shared_ptr<State> driver, Receiver receiver)
        : state(std::move(driver)), connections{std::move(receiver), {}} {
        const std::scoped_lock lock(state->mutex);
        state->inputs.insert(&connections);
    }

    ~Input() override {
        const std::scoped_lock lock(state->mutex);
        state->inputs.erase(&connections);
    }

    OSStatus connect(const std::string& address) override {
        const std::scoped_lock lock(state->mutex);
        for (const auto& [number, name] : state->names) {
            if (std::to_string(number) != address) continue;
            connections.addresses.insert(address);
            return noErr;
        }
        return kMIDIUnknownEndpoint;
    }

    void disconnect(const std::string& address) override {
        const std::scoped_lock lock(state->mutex);
        connections.addresses.erase(address);
    }

  private:
    std::shared_ptr<State> state;
    Connections connections;
};

class VirtualMIDIDriver::Source final : public MIDIOwnSource {
  public:
    Source(std::shared_ptr<State> driver, std::string_view name) : state(std::move(driver)) {
        {
            const std::scoped_lock lock(state->mutex);
            number = ++state->lastNumber;
            state->names[number] = name;
        }
        state->tellListener();
    }

    ~Source() override {
        {
            const std::scoped_lock lock(state->mutex);
            state->names.erase(number);
        }
        state->tellListener();
    }

    bool isConnected() override { return !state->receiversOf(std::to_string(number)).empty(); }

    OSStatus send(std::span<const std::uint8_t> message) override {
        const MIDIPacket packet{message};
        const std::vector<Receiver> receivers = state->receiversOf(std::to_string(number));
        for (const Receiver& receiver : receivers)
            receiver(MIDIPacketList(&packet, 1));
        return receivers.empty() ? kMIDINoConnection : noErr;
    }

  private:
    std::shared_ptr<State> state;
    std::uint64_t number = 0;
};

VirtualMIDIDriver::VirtualMIDIDriver() : state(std::make_shared<State>()) {}

VirtualMIDIDriver::~VirtualMIDIDriver() {
    const std::scoped_lock lock(state->mutex);
    state->listener = nullptr;
}

std::vector<MIDIDriverSource> VirtualMIDIDriver::sources() {
    const std::scoped_lock lock(state->mutex);
    std::vector<MIDIDriverSource> listed;
    for (const auto& [number, name] : state->names)
        listed.push_back({std::to_string(number), "virtual:" + name, name});
    return listed;
}

void VirtualMIDIDriver::setSourcesListener(SourcesListener listener) {
    const std::scoped_lock lock(state->mutex);
    state->listener = std::move(listener);
}

std::unique_ptr<MIDIDriverInput> VirtualMIDIDriver::openInput(std::string_view, Receiver receiver) {
    return std::make_unique<Input>(state, std::move(receiver));
}

Result<std::unique_ptr<MIDIOwnSource>, OSStatus> VirtualMIDIDriver::createSource(std::string_view name) {
    return std::unique_ptr<MIDIOwnSource>(std::make_unique<Source>(state, name));
}

} // namespace orvane::platform::virtual_devices
