#pragma once

#include <alsa/asoundlib.h>

#include <memory>
#include <new>

namespace orvane::platform::alsa {

// Owning handles for alsa-lib. Include this file only in sources and in headers that only sources include.

/// Releases a resource with the library's own function.
template <auto release>
struct Release {
    template <class Resource>
    void operator()(Resource* resource) const noexcept {
        release(resource);
    }
};

using ConfigHandle = std::unique_ptr<snd_config_t, Release<snd_config_delete>>;
using ControlHandle = std::unique_ptr<snd_ctl_t, Release<snd_ctl_close>>;
using PcmHandle = std::unique_ptr<snd_pcm_t, Release<snd_pcm_close>>;
using HardwareParameters = std::unique_ptr<snd_pcm_hw_params_t, Release<snd_pcm_hw_params_free>>;

/// Keeps alsa-lib from printing to standard error what its return values report. Control threads.
void silenceMessages();

/// Makes one of the library's records, whose size only the library knows.
template <auto allocate, auto release, class Record>
std::unique_ptr<Record, Release<release>> makeRecord() {
    Record* record = nullptr;
    if (allocate(&record) < 0) throw std::bad_alloc();
    return std::unique_ptr<Record, Release<release>>(record);
}

} // namespace orvane::platform::alsa
