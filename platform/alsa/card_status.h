#pragma once

#include "platform/alsa/configuration.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace orvane::platform::alsa {

/// The settings of a PCM that a program has open. A plain value.
struct PcmUse {
    std::size_t channelCount = 0;
    /// In Hz.
    unsigned rate = 0;
};

/// Reads what the kernel publishes about sound cards in files, which also works for cards in use. Knows PCMs
/// whose names contain the id of a card ("hw:CARD=X32,DEV=0"). Any thread except audio threads.
class CardStatus final {
  public:
    /// `folder` has a subfolder for each card: "/proc/asound".
    explicit CardStatus(std::filesystem::path folder) : root(std::move(folder)) {}

    /// The number of the PCM's card; absent if the card is unknown.
    [[nodiscard]] std::optional<int> cardNumber(const std::string& pcmName) const;

    /// Whether the card is connected by USB.
    [[nodiscard]] bool isUsb(const std::string& pcmName) const;

    /// The current settings of one direction of the PCM; absent if it is closed or not configured yet.
    [[nodiscard]] std::optional<PcmUse> use(const std::string& pcmName, Direction direction) const;

    /// The rate, in Hz, of any running PCM of the card; absent if all are idle.
    [[nodiscard]] std::optional<unsigned> currentRate(const std::string& pcmName) const;

    /// The name of the other program that has the PCM open; empty if it is unknown.
    [[nodiscard]] std::string userOf(const std::string& pcmName) const;

  private:
    std::filesystem::path root;
};

} // namespace orvane::platform::alsa
