#include "support/random_document.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace orvane::test {

namespace {

using namespace session;

class Draw final {
  public:
    explicit Draw(std::uint64_t seed) : engine(seed) {}

    std::size_t below(std::size_t limit) { return engine() % limit; }
    bool flag() { return below(2) == 1; }

    double number() {
        for (;;) {
            const auto any = std::bit_cast<double>(engine());
            if (std::isfinite(any)) return flag() ? any : static_cast<double>(below(2000)) / 10.0 - 100.0;
        }
    }

    std::int64_t integer() {
        constexpr std::int64_t extremes[] = {
            std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(), 0, -1};
        return flag() ? extremes[below(4)] : static_cast<std::int64_t>(below(64));
    }

    std::string text() {
        constexpr const char* pieces[] = {"Ch 1", "\"", "\\", "\n", "\x01", "é", "話", "🎤", "/", "\x7f", " "};
        std::string text;
        for (std::size_t count = below(6); count > 0; --count)
            text += pieces[below(std::size(pieces))];
        if (below(8) == 0) text += '\0';
        return text;
    }

    std::vector<std::uint8_t> bytes() {
        std::vector<std::uint8_t> drawn(below(70));
        for (auto& byte : drawn)
            byte = static_cast<std::uint8_t>(engine());
        return drawn;
    }

    std::uint32_t code() { return flag() ? static_cast<std::uint32_t>(engine()) : ~0U; }

    PluginSlot slot() {
        PluginSlot slot = PluginSlot::makeEmpty();
        if (flag()) slot.pluginName = text();
        if (flag()) slot.component = {code(), code(), code()};
        if (flag()) slot.presetData = bytes();
        slot.bypassed = flag();
        return slot;
    }

    OutputRouting routing() {
        switch (below(3)) {
        case 0:
            return output::None{};
        case 1:
            return output::Mono{integer()};
        default:
            return output::Stereo{integer(), integer(), number()};
        }
    }

    MasterOutputRouting masterRouting() {
        switch (below(3)) {
        case 0:
            return master_output::None{};
        case 1:
            return master_output::Mono{integer()};
        default:
            return master_output::Stereo{integer(), integer()};
        }
    }

    std::vector<ChannelSettingsData> channels() {
        std::vector<ChannelSettingsData> drawn(below(5));
        for (auto& channel : drawn) {
            channel.name = text();
            if (flag()) channel.inputChannelIndex = integer();
            channel.outputRouting = routing();
            channel.genderMode = dsp::allGenderTriggerModes[below(3)];
            channel.muted = flag();
            channel.bypassed = flag();
            channel.trim = number();
            channel.vocalRole = dsp::allVocalRoles[below(3)];
            for (std::size_t count = pluginSlotsPerChannel + below(3); count > 0; --count)
                channel.pluginSlots.push_back(slot());
        }
        return drawn;
    }

    Snapshot snapshot() {
        Snapshot snapshot{platform::Uuid::random(), text(), channels(), number(), number(), number(), {}};
        if (flag()) snapshot.midiTrigger = {integer(), integer()};
        return snapshot;
    }

  private:
    std::mt19937_64 engine;
};

} // namespace

MixerDocumentData randomDocument(std::uint64_t seed) {
    Draw draw(seed);
    MixerDocumentData data;
    data.channels = draw.channels();
    data.masterTargetDB = draw.number();
    data.bufferSize = draw.integer();
    for (std::size_t count = draw.below(4); count > 0; --count)
        data.snapshots.push_back(draw.snapshot());
    data.masterOutputRouting = draw.masterRouting();
    data.leadGroupGainDB = draw.number();
    data.backingGroupGainDB = draw.number();
    data.pluginSlotRecallSafe.resize(draw.below(7));
    for (auto&& flag : data.pluginSlotRecallSafe)
        flag = draw.flag();
    data.referenceNoiseGain = draw.number();
    data.duckerReleaseMs = draw.number();
    return data;
}

} // namespace orvane::test
