#include "platform/midi_services/sequencer_identity.h"

namespace orvane::platform {

namespace {

bool isLetterOrDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z')
           || (character >= 'A' && character <= 'Z');
}

} // namespace

std::string sequencerIdentity(std::string_view clientName, unsigned long portNumber) {
    std::string identity = "alsa:";
    for (const char character : clientName)
        if (isLetterOrDigit(character)) identity += character;
    return identity + ":" + std::to_string(portNumber);
}

} // namespace orvane::platform
