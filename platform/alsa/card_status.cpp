#include "platform/alsa/card_status.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <map>
#include <string_view>
#include <system_error>
#include <vector>

namespace orvane::platform::alsa {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view blanks = " \t";

/// The value of "KEY=" among the arguments of a PCM's name; empty if it is absent.
std::string argument(const std::string& pcmName, std::string_view key) {
    const std::size_t colon = pcmName.find(':');
    const std::size_t start = colon == std::string::npos ? colon : pcmName.find(key, colon);
    if (start == std::string::npos) return {};
    const std::string_view value = std::string_view(pcmName).substr(start + key.size());
    return std::string(value.substr(0, value.find(',')));
}

std::string cardId(const std::string& pcmName) {
    return argument(pcmName, "CARD=");
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// The "key : value" lines of a kernel file.
std::map<std::string, std::string> readFields(const fs::path& file) {
    std::map<std::string, std::string> fields;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);)
        if (const std::size_t colon = line.find(':'); colon != std::string::npos)
            fields.emplace(
                trimmed(std::string_view(line).substr(0, colon)),
                trimmed(std::string_view(line).substr(colon + 1))
            );
    return fields;
}

/// The number that a text starts with; 0 if there is none.
unsigned numberIn(std::string_view text) {
    unsigned number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

unsigned numberAt(const std::map<std::string, std::string>& fields, const char* key) {
    const auto field = fields.find(key);
    return field == fields.end() ? 0 : numberIn(field->second);
}

/// The subfolders of `folder` whose names start with `prefix`.
std::vector<fs::path> foldersIn(const fs::path& folder, std::string_view prefix) {
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator at(folder, error); !error && at != fs::directory_iterator();
         at.increment(error))
        if (at->path().filename().string().starts_with(prefix)) found.push_back(at->path());
    return found;
}

std::optional<PcmUse> useOf(const fs::path& pcmFolder) {
    for (const fs::path& part : foldersIn(pcmFolder, "sub")) {
        const auto fields = readFields(part / "hw_params");
        const PcmUse use{.channelCount = numberAt(fields, "channels"), .rate = numberAt(fields, "rate")};
        if (use.rate > 0 && use.channelCount > 0) return use;
    }
    return std::nullopt;
}

fs::path pcmFolder(const fs::path& root, const std::string& pcmName, Direction direction) {
    const std::string device = argument(pcmName, "DEV=");
    return root / cardId(pcmName)
           / fmt::format(
               "pcm{}{}", device.empty() ? "0" : device, direction == Direction::playback ? 'p' : 'c'
           );
}

} // namespace

std::optional<int> CardStatus::cardNumber(const std::string& pcmName) const {
    constexpr std::string_view prefix = "card";
    const std::string id = cardId(pcmName);
    if (id.empty()) return std::nullopt;
    // A card's id is a link to the folder with its number.
    std::error_code error;
    const std::string folder = fs::read_symlink(root / id, error).filename().string();
    if (error || !folder.starts_with(prefix)) return std::nullopt;
    return static_cast<int>(numberIn(std::string_view(folder).substr(prefix.size())));
}

bool CardStatus::isUsb(const std::string& pcmName) const {
    const std::string id = cardId(pcmName);
    std::error_code error;
    return !id.empty() && fs::exists(root / id / "usbid", error);
}

std::optional<PcmUse> CardStatus::use(const std::string& pcmName, Direction direction) const {
    return cardId(pcmName).empty() ? std::nullopt : useOf(pcmFolder(root, pcmName, direction));
}

std::optional<unsigned> CardStatus::currentRate(const std::string& pcmName) const {
    const std::string id = cardId(pcmName);
    if (id.empty()) return std::nullopt;
    for (const fs::path& pcm : foldersIn(root / id, "pcm"))
        if (const auto use = useOf(pcm)) return use->rate;
    return std::nullopt;
}

std::string CardStatus::userOf(const std::string& pcmName) const {
    if (cardId(pcmName).empty()) return {};
    for (const Direction direction : {Direction::playback, Direction::capture})
        for (const fs::path& part : foldersIn(pcmFolder(root, pcmName, direction), "sub")) {
            const unsigned process = numberAt(readFields(part / "status"), "owner_pid");
            if (process == 0 || process == static_cast<unsigned>(::getpid())) continue;
            std::string name;
            std::ifstream command(fmt::format("/proc/{}/comm", process));
            if (std::getline(command, name)) return name;
        }
    return {};
}

} // namespace orvane::platform::alsa
