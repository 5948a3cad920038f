#include "platform/alsa/sequencer.h"

#include "platform/midi_services/sequencer_identity.h"

#include <charconv>

namespace orvane::platform::alsa {

namespace {

bool isSource(const snd_seq_port_info_t* port) {
    constexpr unsigned needed = SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ;
    const unsigned capabilities = snd_seq_port_info_get_capability(port);
    return (capabilities & needed) == needed && (capabilities & SND_SEQ_PORT_CAP_NO_EXPORT) == 0;
}

/// Hardware ports start with the name of their client; others often only have a number.
std::string displayName(const std::string& client, const std::string& port) {
    return port.starts_with(client) ? port : client + " " + port;
}

std::optional<unsigned char> parseNumber(std::string_view digits) {
    unsigned char number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace

SequencerHandle openSequencer(const char* clientName) {
    silenceMessages();
    snd_seq_t* opened = nullptr;
    if (snd_seq_open(&opened, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK) < 0) return nullptr;
    SequencerHandle sequencer(opened);
    snd_seq_set_client_name(opened, clientName);
    return sequencer;
}

std::vector<MIDIDriverSource> listSources(snd_seq_t* sequencer) {
    const auto client =
        makeRecord<snd_seq_client_info_malloc, snd_seq_client_info_free, snd_seq_client_info_t>();
    const auto port = makeRecord<snd_seq_port_info_malloc, snd_seq_port_info_free, snd_seq_port_info_t>();
    std::vector<MIDIDriverSource> sources;
    snd_seq_client_info_set_client(client.get(), -1);
    while (snd_seq_query_next_client(sequencer, client.get()) == 0) {
        const int number = snd_seq_client_info_get_client(client.get());
        if (number == SND_SEQ_CLIENT_SYSTEM || number == snd_seq_client_id(sequencer)) continue;
        const std::string clientName = snd_seq_client_info_get_name(client.get());
        snd_seq_port_info_set_client(port.get(), number);
        snd_seq_port_info_set_port(port.get(), -1);
        while (snd_seq_query_next_port(sequencer, port.get()) == 0) {
            if (!isSource(port.get())) continue;
            const int portNumber = snd_seq_port_info_get_port(port.get());
            sources.push_back(
                {std::to_string(number) + ":" + std::to_string(portNumber),
                 sequencerIdentity(clientName, static_cast<unsigned long>(portNumber)),
                 displayName(clientName, snd_seq_port_info_get_name(port.get()))}
            );
        }
    }
    return sources;
}

std::optional<snd_seq_addr_t> parseAddress(std::string_view address) {
    const std::size_t colon = address.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    const auto client = parseNumber(address.substr(0, colon));
    const auto port = parseNumber(address.substr(colon + 1));
    if (!client || !port) return std::nullopt;
    return snd_seq_addr_t{*client, *port};
}

bool announcesChange(const snd_seq_event_t& event) {
    switch (event.type) {
    case SND_SEQ_EVENT_CLIENT_START:
    case SND_SEQ_EVENT_CLIENT_EXIT:
    case SND_SEQ_EVENT_CLIENT_CHANGE:
    case SND_SEQ_EVENT_PORT_START:
    case SND_SEQ_EVENT_PORT_EXIT:
    case SND_SEQ_EVENT_PORT_CHANGE:
        return true;
    default:
        return false;
    }
}

} // namespace orvane::platform::alsa
