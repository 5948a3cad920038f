#include "platform/alsa/alsa_library.h"

namespace orvane::platform::alsa {

namespace {

void ignoreMessage(const char*, int, const char*, int, const char*, ...) {}

} // namespace

void silenceMessages() {
    snd_lib_error_set_handler(ignoreMessage);
}

} // namespace orvane::platform::alsa
