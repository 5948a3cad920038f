// A PCM type for the tests' configurations: "hardware" with exactly the abilities in its definition, always
// one period ahead, with scripted failures.

#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace {

/// The number of open PCMs in each direction.
std::atomic<int> openCounts[SND_PCM_STREAM_LAST + 1];

struct ScriptedPcm {
    explicit ScriptedPcm(snd_pcm_stream_t direction) : openCount(openCounts[direction]) { ++openCount; }
    ~ScriptedPcm() {
        ::close(io.poll_fd);
        --openCount;
    }
    ScriptedPcm(const ScriptedPcm&) = delete;
    ScriptedPcm& operator=(const ScriptedPcm&) = delete;

    snd_pcm_ioplug_t io{};
    std::atomic<int>& openCount;

    // Set by the definition.
    long channels = 2;
    long rate = 48000;
    /// An additional sample rate, or 0.
    long secondRate = 0;
    long format = SND_PCM_FORMAT_S32_LE;
    long period = 64;
    long access = SND_PCM_ACCESS_RW_INTERLEAVED;
    /// Positive errno values with which opening and transfers fail.
    long openError = 0;
    long error = 0;
    /// The number of transfers before the first failure, and the number of failures.
    long errorAfter = 0;
    long errorCount = 1;
    /// The interval between failing transfers.
    long errorEvery = 1;
    /// The delay of the first period after a start, in milliseconds.
    long startDelay = 0;
    /// The maximum number of periods in the buffer.
    long periods = 2;
    /// The number of transfers before the device falls silent.
    long silentAfter = -1;
    /// The duration of a transfer in microseconds.
    long pause = 0;
    /// The device is unplugged while this file exists.
    std::string gone;
    /// Created whenever the device is opened.
    std::string opened;
    /// Whether each direction can be opened only once at a time.
    long exclusive = 0;

    long transferCount = 0;

    [[nodiscard]] bool isGone() const { return !gone.empty() && ::access(gone.c_str(), F_OK) == 0; }
    [[nodiscard]] bool isSilent() const {
        pollfd clock{io.poll_fd, POLLIN, 0};
        const bool isStarting = startDelay > 0 && ::poll(&clock, 1, 0) == 0;
        return isStarting || (silentAfter >= 0 && transferCount >= silentAfter);
    }
};

ScriptedPcm& scriptOf(snd_pcm_ioplug_t* io) {
    return *static_cast<ScriptedPcm*>(io->private_data);
}

int start(snd_pcm_ioplug_t* io) {
    const long delay = scriptOf(io).startDelay;
    const itimerspec once{.it_interval = {}, .it_value = {delay / 1000, delay % 1000 * 1000000}};
    if (delay > 0) ::timerfd_settime(io->poll_fd, 0, &once, nullptr);
    return 0;
}

int succeed(snd_pcm_ioplug_t*) {
    return 0;
}

snd_pcm_sframes_t pointer(snd_pcm_ioplug_t* io) {
    const snd_pcm_uframes_t ahead = scriptOf(io).isSilent() ? 0 : io->period_size;
    return static_cast<snd_pcm_sframes_t>((io->appl_ptr + ahead) % io->buffer_size);
}

snd_pcm_sframes_t
transfer(snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t*, snd_pcm_uframes_t, snd_pcm_uframes_t size) {
    ScriptedPcm& script = scriptOf(io);
    if (script.isGone()) return -ENODEV;
    if (script.pause > 0) ::usleep(static_cast<useconds_t>(script.pause));
    const long since = script.transferCount++ - script.errorAfter;
    const bool fails =
        since >= 0 && since % script.errorEvery == 0 && since / script.errorEvery < script.errorCount;
    if (script.error != 0 && fails) return -script.error;
    eventfd_t ignored = 0;
    if (script.isSilent()) eventfd_read(io->poll_fd, &ignored);
    return static_cast<snd_pcm_sframes_t>(size);
}

int close(snd_pcm_ioplug_t* io) {
    delete &scriptOf(io);
    return 0;
}

const snd_pcm_ioplug_callback_t callbacks = [] {
    snd_pcm_ioplug_callback_t table{};
    table.start = start;
    table.stop = succeed;
    table.pointer = pointer;
    table.transfer = transfer;
    table.close = close;
    return table;
}();

void readDefinition(ScriptedPcm& script, snd_config_t* definition) {
    const std::pair<std::string_view, long*> fields[] = {
        {"channels", &script.channels},     {"rate", &script.rate},
        {"period", &script.period},         {"openError", &script.openError},
        {"error", &script.error},           {"errorAfter", &script.errorAfter},
        {"errorCount", &script.errorCount}, {"silentAfter", &script.silentAfter},
        {"exclusive", &script.exclusive},   {"pause", &script.pause},
        {"errorEvery", &script.errorEvery}, {"startDelay", &script.startDelay},
        {"periods", &script.periods},       {"secondRate", &script.secondRate}};
    snd_config_iterator_t at = nullptr;
    snd_config_iterator_t next = nullptr;
    snd_config_for_each(at, next, definition) {
        snd_config_t* const entry = snd_config_iterator_entry(at);
        const char* key = nullptr;
        const char* text = nullptr;
        snd_config_get_id(entry, &key);
        for (const auto& [name, value] : fields)
            if (name == key) snd_config_get_integer(entry, value);
        if (snd_config_get_string(entry, &text) < 0) continue;
        if (std::string_view("gone") == key) script.gone = text;
        if (std::string_view("opened") == key) script.opened = text;
        if (std::string_view("format") == key) script.format = snd_pcm_format_value(text);
        if (std::string_view("access") != key) continue;
        for (int access = 0; access <= SND_PCM_ACCESS_LAST; ++access)
            if (snd_pcm_access_name(static_cast<snd_pcm_access_t>(access)) == std::string_view(text))
                script.access = access;
    }
}

void restrictParameters(ScriptedPcm& script) {
    const auto only = [&](int parameter, long value) {
        const auto number = static_cast<unsigned>(value);
        snd_pcm_ioplug_set_param_list(&script.io, parameter, 1, &number);
    };
    const int bits = snd_pcm_format_physical_width(static_cast<snd_pcm_format_t>(script.format));
    only(SND_PCM_IOPLUG_HW_ACCESS, script.access);
    only(SND_PCM_IOPLUG_HW_FORMAT, script.format);
    const unsigned rates[] = {static_cast<unsigned>(script.rate), static_cast<unsigned>(script.secondRate)};
    snd_pcm_ioplug_set_param_list(&script.io, SND_PCM_IOPLUG_HW_RATE, script.secondRate == 0 ? 1 : 2, rates);
    only(SND_PCM_IOPLUG_HW_CHANNELS, script.channels);
    snd_pcm_ioplug_set_param_minmax(
        &script.io, SND_PCM_IOPLUG_HW_PERIODS, 2, static_cast<unsigned>(script.periods)
    );
    only(SND_PCM_IOPLUG_HW_PERIOD_BYTES, script.period * script.channels * bits / 8);
}

} // namespace

extern "C" {

int _snd_pcm_scripted_open(
    snd_pcm_t** pcm, const char* name, snd_config_t*, snd_config_t* definition, snd_pcm_stream_t stream,
    int mode
) {
    auto script = std::make_unique<ScriptedPcm>(stream);
    readDefinition(*script, definition);
    if (!script->opened.empty()) ::close(::creat(script->opened.c_str(), S_IRUSR));
    script->io.version = SND_PCM_IOPLUG_VERSION;
    script->io.name = "scripted";
    script->io.callback = &callbacks;
    script->io.private_data = script.get();
    script->io.poll_fd =
        script->startDelay > 0 ? timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK) : eventfd(1, EFD_NONBLOCK);
    script->io.poll_events = POLLIN;
    script->io.mmap_rw = script->access <= SND_PCM_ACCESS_MMAP_COMPLEX ? 1 : 0;
    if (script->isGone()) return -ENODEV;
    if (script->openError != 0) return -static_cast<int>(script->openError);
    if (script->exclusive != 0 && script->openCount > 1) return -EBUSY;
    if (const int error = snd_pcm_ioplug_create(&script->io, name, stream, mode); error < 0) return error;
    restrictParameters(*script);
    *pcm = script.release()->io.pcm;
    return 0;
}

// Lets the library check the version of its interface that the type was made for.
extern const char __snd_pcm_scripted_open_dlsym_pcm_001 = 0;
}
