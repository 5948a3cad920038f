#pragma once

#include "platform/alsa/configuration.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace orvane::platform::alsa {

/// How a PCM of a card runs for the program that has it open. A plain value.
struct PcmUse {
    std::size_t channelCount = 0;
    /// In Hz.
    unsigned rate = 0;
};

/// Reads what the kernel publishes about sound cards, in files, so that it works for cards in use as well.
/// Knows PCMs whose names carry the id of a card ("hw:CARD=X32,DEV=0"). Any thread but an audio thread.
class CardStatus final {
  public:
    /// `folder` has a folder for each card: "/proc/asound".
    explicit CardStatus(std::filesystem::path folder) : root(std::move(folder)) {}

    /// The number of the card that has the PCM; nothing if the card is unknown.
    [[nodiscard]] std::optional<int> cardNumber(const std::string& pcmName) const;

    /// Whether the card is connected by USB.
    [[nodiscard]] bool isUsb(const std::string& pcmName) const;

    /// How one direction of the PCM runs now; nothing if it is closed or not set up yet.
    [[nodiscard]] std::optional<PcmUse> use(const std::string& pcmName, Direction direction) const;

    /// The rate, in Hz, at which any PCM of the card runs now; nothing if all are idle.
    [[nodiscard]] std::optional<unsigned> currentRate(const std::string& pcmName) const;

    /// The name of the other program that has the PCM open; empty if it is unknown.
    [[nodiscard]] std::string userOf(const std::string& pcmName) const;

  private:
    std::filesystem::path root;
};

} // namespace orvane::platform::alsa
