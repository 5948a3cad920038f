#include "support/random_document.h"

#include <array>
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

    MixerDocumentData document() {
        const auto channels = list(0, 4, &Draw::channel);
        const auto snapshots = list(0, 3, &Draw::snapshot);
        const auto flags = list(0, 6, &Draw::flag);
        return {channels, master(), integer(), snapshots, flags};
    }

  private:
    MasterSettings master() {
        const auto output = routing<MasterOutputRouting>(master_output::Stereo{integer(), integer()});
        return {levels(), number(), number(), output, options()};
    }
    dsp::OutputOptions options() {
        return {
            static_cast<dsp::LevelerMode>(below(3)), flag(), flag(), flag(),
            maybe(-static_cast<double>(below(2001)) / 100.0)};
    }
    MasterLevels levels() { return {number(), number(), number()}; }

    std::size_t below(std::size_t limit) { return engine() % limit; }
    bool flag() { return below(2) == 1; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(engine()); }
    std::uint32_t code() { return flag() ? static_cast<std::uint32_t>(engine()) : ~0U; }

    double number() {
        const auto any = std::bit_cast<double>(engine());
        return flag() && std::isfinite(any) ? any : static_cast<double>(below(2000)) / 10.0 - 100.0;
    }

    std::int64_t integer() {
        using Limits = std::numeric_limits<std::int64_t>;
        constexpr std::int64_t extremes[] = {Limits::min(), Limits::max(), 0, -1};
        return flag() ? extremes[below(4)] : static_cast<std::int64_t>(below(64));
    }

    std::string text() {
        constexpr const char* pieces[] = {"Ch 1", "\"", "\\", "\n", "\x01", "é", "話", "🎤", "/", "\x7f", " "};
        std::string text;
        for (std::size_t count = below(6); count > 0; --count)
            text += pieces[below(std::size(pieces))];
        return below(8) == 0 ? text + '\0' : text;
    }

    template <class Value>
    std::optional<Value> maybe(Value value) {
        return flag() ? std::optional(std::move(value)) : std::nullopt;
    }

    template <class Item>
    std::vector<Item> list(std::size_t shortest, std::size_t longest, Item (Draw::*make)()) {
        std::vector<Item> items;
        for (std::size_t count = shortest + below(longest - shortest + 1); count > 0; --count)
            items.push_back((this->*make)());
        return items;
    }

    template <class Routing>
    Routing routing(Routing stereo) {
        return std::array<Routing, 3>{output::None{}, output::Mono{integer()}, stereo}[below(3)];
    }

    PluginSlot slot() {
        const auto component = maybe(AUComponentIdentity{code(), code(), code()});
        return {platform::Uuid::random(), maybe(text()), component, maybe(list(0, 69, &Draw::byte)), flag()};
    }

    ChannelSettingsData channel() {
        const auto output = routing<OutputRouting>(output::Stereo{integer(), integer(), number()});
        const auto gender = dsp::allGenderTriggerModes[below(3)];
        const auto role = dsp::allVocalRoles[below(3)];
        const auto slots = list(pluginSlotsPerChannel, pluginSlotsPerChannel + 2, &Draw::slot);
        return {text(), maybe(integer()), output, gender, flag(), flag(), number(), role, slots};
    }

    Snapshot snapshot() {
        const auto id = platform::Uuid::random();
        const auto channels = list(0, 4, &Draw::channel);
        const auto trigger = maybe(MIDITrigger{integer(), integer()});
        return {id, text(), channels, levels(), trigger};
    }

    std::mt19937_64 engine;
};

} // namespace

MixerDocumentData randomDocument(std::uint64_t seed) {
    return Draw(seed).document();
}

} // namespace orvane::test
