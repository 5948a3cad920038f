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

/// What operations work on, and what they leave for later ones. Main thread.
struct Hands final {
    Stage& stage;
    Choices& choices;
    /// Exported sessions, as file contents.
    std::vector<std::string> sessions = {};
    /// The show before an extreme session was imported, to be restored.
    std::optional<session::MixerDocumentData> before = {};

    [[nodiscard]] engine::MixerEngine& engine() const { return stage.engine; }
    [[nodiscard]] const engine::EngineState& state() const { return stage.engine.state(); }

    /// A random strip; sometimes one that does not exist.
    [[nodiscard]] platform::Uuid strip() const;
    /// A random insert slot; sometimes one that does not exist.
    [[nodiscard]] std::size_t slot() const { return choices.below(session::pluginSlotsPerChannel + 1); }
    /// A random channel number, sometimes out of a device's range, including below 0.
    [[nodiscard]] std::int64_t channel() const { return static_cast<std::int64_t>(choices.below(52)) - 2; }
    /// A random index, sometimes out of a list's range.
    [[nodiscard]] std::int64_t index(std::size_t count) const {
        return static_cast<std::int64_t>(choices.below(count + 2)) - 1;
    }
    [[nodiscard]] bool flag() const { return choices.below(2) == 1; }
    [[nodiscard]] std::string text() const;
    /// A random installed effect.
    [[nodiscard]] session::AUComponentIdentity component() const;
};

/// Something that an operator, another program or a loose cable does to a mixer.
struct Operation {
    /// For reports.
    std::string_view name;
    /// How often it is chosen, relative to the others.
    std::size_t weight;
    /// Whether it may stop or start the audio or change its buffer size.
    bool interrupts;
    void (*run)(Hands& hands);
};

// All operations, grouped by what they affect.

std::span<const Operation> stripOperations();
std::span<const Operation> masterOperations();
std::span<const Operation> sceneOperations();
std::span<const Operation> pluginOperations();
std::span<const Operation> machineOperations();

} // namespace orvane::soak
