#include "platform/alsa/alsa_midi_driver.h"

#include "platform/alsa/alsa_midi_own_source.h"
#include "platform/alsa/event_bytes.h"
#include "platform/alsa/sequencer.h"
#include "platform/base/file_descriptor.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace orvane::platform::alsa {

namespace {

constexpr unsigned listeningPort = SND_SEQ_PORT_CAP_WRITE;
constexpr unsigned inputType = SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION;

} // namespace

struct AlsaMIDIDriver::State {
    explicit State(std::string programName) : name(std::move(programName)) {}

    ~State() {
        if (!thread.joinable()) return;
        const std::uint64_t one = 1;
        while (::write(ending.number(), &one, sizeof(one)) < 0 && errno == EINTR) {
        }
        thread.join();
    }

    /// Opens the sequencer if necessary; returns whether it is usable. Requires the mutex.
    bool open() {
        if (sequencer != nullptr) return true;
        sequencer = openSequencer(name.c_str());
        if (sequencer == nullptr) return false;
        announcements = snd_seq_create_simple_port(
            sequencer.get(), "announcements", listeningPort | SND_SEQ_PORT_CAP_NO_EXPORT,
            SND_SEQ_PORT_TYPE_APPLICATION
        );
        snd_seq_connect_from(
            sequencer.get(), announcements, SND_SEQ_CLIENT_SYSTEM, SND_SEQ_PORT_SYSTEM_ANNOUNCE
        );
        thread = std::thread([this] { run(); });
        return true;
    }

    void run() {
        constexpr int forEver = -1;
        std::vector<pollfd> descriptors(
            1 + static_cast<std::size_t>(snd_seq_poll_descriptors_count(sequencer.get(), POLLIN))
        );
        descriptors.front() = {ending.number(), POLLIN, 0};
        snd_seq_poll_descriptors(
            sequencer.get(), descriptors.data() + 1, static_cast<unsigned>(descriptors.size() - 1), POLLIN
        );
        while (true) {
            if (::poll(descriptors.data(), descriptors.size(), forEver) < 0 && errno != EINTR) return;
            const bool hasEnded = std::ranges::any_of(descriptors, [](const pollfd& descriptor) {
                return (descriptor.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
            });
            if (hasEnded || (descriptors.front().revents & POLLIN) != 0) return;
            receive();
        }
    }

    /// Receives all pending events.
    void receive() {
        bool hasChanged = false;
        while (true) {
            snd_seq_event_t* event = nullptr;
            const int status = snd_seq_event_input(sequencer.get(), &event);
            // Events were lost, so any change is possible.
            if (status == -ENOSPC) hasChanged = true;
            if (status < 0 && status != -ENOSPC) break;
            if (event == nullptr) continue;
            if (event->dest.port == announcements)
                hasChanged |= announcesChange(*event);
            else
                deliver(*event);
        }
        if (hasChanged) tellChange();
    }

    void deliver(const snd_seq_event_t& event) {
        const MIDIPacket packet{translator.decode(event)};
        std::unique_lock lock(mutex);
        const auto found = receivers.find(event.dest.port);
        if (packet.data.empty() || found == receivers.end()) return;
        const std::shared_ptr<const Receiver> receiver = found->second;
        lock.unlock();
        (*receiver)(MIDIPacketList(&packet, 1));
    }

    void tellChange() {
        std::unique_lock lock(mutex);
        const SourcesListener told = listener;
        lock.unlock();
        if (told) told();
    }

    const std::string name;
    std::mutex mutex;
    SequencerHandle sequencer;
    int announcements = -1;
    /// By the number of the port that receives for them.
    std::map<int, std::shared_ptr<const Receiver>> receivers;
    SourcesListener listener;
    /// Used by the thread only.
    EventBytes translator;
    FileDescriptor ending{::eventfd(0, EFD_CLOEXEC)};
    std::thread thread;
};

class AlsaMIDIDriver::Input final : public MIDIDriverInput {
  public:
    Input(State& driver, std::string_view portName, Receiver inputReceiver)
        : state(driver),
          name(portName),
          receiver(std::make_shared<const Receiver>(std::move(inputReceiver))) {
        const std::scoped_lock lock(state.mutex);
        open();
    }

    ~Input() override {
        const std::scoped_lock lock(state.mutex);
        if (port < 0) return;
        state.receivers.erase(port);
        snd_seq_delete_simple_port(state.sequencer.get(), port);
    }

    OSStatus connect(const std::string& address) override {
        const std::scoped_lock lock(state.mutex);
        const std::optional<snd_seq_addr_t> source = parseAddress(address);
        if (!source || !open()) return kMIDIUnknownEndpoint;
        const int status = snd_seq_connect_from(state.sequencer.get(), port, source->client, source->port);
        return status == 0 ? noErr : kMIDINoConnection;
    }

    void disconnect(const std::string& address) override {
        const std::scoped_lock lock(state.mutex);
        const std::optional<snd_seq_addr_t> source = parseAddress(address);
        if (source && port >= 0)
            snd_seq_disconnect_from(state.sequencer.get(), port, source->client, source->port);
    }

  private:
    /// Creates the receiving port if necessary; returns whether it exists. Requires the mutex.
    bool open() {
        if (port >= 0) return true;
        if (!state.open()) return false;
        port = snd_seq_create_simple_port(
            state.sequencer.get(), name.c_str(), listeningPort | SND_SEQ_PORT_CAP_SUBS_WRITE, inputType
        );
        if (port >= 0) state.receivers[port] = receiver;
        return port >= 0;
    }

    State& state;
    std::string name;
    std::shared_ptr<const Receiver> receiver;
    int port = -1;
};

AlsaMIDIDriver::AlsaMIDIDriver(std::string programName)
    : state(std::make_unique<State>(std::move(programName))) {}

AlsaMIDIDriver::~AlsaMIDIDriver() = default;

std::vector<MIDIDriverSource> AlsaMIDIDriver::sources() {
    const std::scoped_lock lock(state->mutex);
    return state->open() ? listSources(state->sequencer.get()) : std::vector<MIDIDriverSource>();
}

void AlsaMIDIDriver::setSourcesListener(SourcesListener listener) {
    const std::scoped_lock lock(state->mutex);
    state->listener = std::move(listener);
}

std::unique_ptr<MIDIDriverInput> AlsaMIDIDriver::openInput(std::string_view name, Receiver receiver) {
    return std::make_unique<Input>(*state, name, std::move(receiver));
}

Result<std::unique_ptr<MIDIOwnSource>, OSStatus> AlsaMIDIDriver::createSource(std::string_view name) {
    return OwnSource::create(state->name.c_str(), name);
}

} // namespace orvane::platform::alsa
