#pragma once

#include "engine/session/mixer_document_data.h"
#include "soak/choices.h"
#include "soak/stage.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::soak {

/// What an operation works with and what it leaves for the next. Main thread.
struct Hands final {
    Stage& stage;
    Choices& choices;
    /// Sessions that were exported, as the content of their files.
    std::vector<std::string> sessions = {};
    /// The show as it was before something wild was loaded; to be brought back.
    std::optional<session::MixerDocumentData> before = {};

    [[nodiscard]] engine::MixerEngine& engine() const { return stage.engine; }
    [[nodiscard]] const engine::EngineState& state() const { return stage.engine.state(); }

    /// Some strip; now and then one that is not there.
    [[nodiscard]] platform::Uuid strip() const;
    /// Some insert slot; now and then one that is not there.
    [[nodiscard]] std::size_t slot() const { return choices.below(session::pluginSlotsPerChannel + 1); }
    /// A channel of a device or a little beyond what it has, below 0 included.
    [[nodiscard]] std::int64_t channel() const { return static_cast<std::int64_t>(choices.below(52)) - 2; }
    /// Of a list or a little beyond.
    [[nodiscard]] std::int64_t index(std::size_t count) const {
        return static_cast<std::int64_t>(choices.below(count + 2)) - 1;
    }
    [[nodiscard]] bool flag() const { return choices.below(2) == 1; }
    [[nodiscard]] std::string text() const;
    /// Some installed effect.
    [[nodiscard]] session::AUComponentIdentity component() const;
};

/// Something that an operator, another program or a loose cable does to a mixer.
struct Operation {
    /// For reports.
    std::string_view name;
    /// How often it is done, compared with the others.
    std::size_t weight;
    /// Whether it may stop the audio, start it or change its buffer size.
    bool interrupts;
    void (*run)(Hands& hands);
};

// All operations, by what they are done to.

std::span<const Operation> stripOperations();
std::span<const Operation> masterOperations();
std::span<const Operation> sceneOperations();
std::span<const Operation> pluginOperations();
std::span<const Operation> machineOperations();

} // namespace orvane::soak
