#include "platform/alsa/configuration.h"

#include <new>

namespace orvane::platform::alsa {

namespace {

ConfigHandle load(const std::filesystem::path& file) {
    snd_config_t* top = nullptr;
    if (snd_config_top(&top) < 0) throw std::bad_alloc();
    ConfigHandle root(top);
    snd_input_t* input = nullptr;
    if (snd_input_stdio_open(&input, file.c_str(), "r") < 0) return root;
    snd_config_load(root.get(), input);
    snd_input_close(input);
    return root;
}

} // namespace

Configuration::Configuration(const std::filesystem::path& file) {
    if (!file.empty()) root = load(file);
}

Result<PcmHandle, ErrorNumber> Configuration::open(const std::string& pcmName, Direction direction) const {
    const auto stream = direction == Direction::playback ? SND_PCM_STREAM_PLAYBACK : SND_PCM_STREAM_CAPTURE;
    snd_pcm_t* pcm = nullptr;
    const ErrorNumber error =
        root ? snd_pcm_open_lconf(&pcm, pcmName.c_str(), stream, SND_PCM_NONBLOCK, root.get())
             : snd_pcm_open(&pcm, pcmName.c_str(), stream, SND_PCM_NONBLOCK);
    if (error < 0) return error;
    return PcmHandle(pcm);
}

} // namespace orvane::platform::alsa
