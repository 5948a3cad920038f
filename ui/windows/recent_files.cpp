#include "ui/windows/recent_files.h"

#include <QByteArray>
#include <QList>

#include <string_view>
#include <system_error>

namespace orvane::ui {

namespace {

constexpr std::string_view recentFilesKey = "orvaneRecentFiles";

} // namespace

platform::Result<platform::Done> RecentFiles::add(const std::filesystem::path& path) {
    std::vector<std::filesystem::path> files = all();
    std::erase(files, path);
    files.insert(files.begin(), path);
    if (files.size() > mostFiles) files.resize(mostFiles);
    // Encoded, because a path may contain line ends and spaces.
    QByteArray list;
    for (const std::filesystem::path& file : files)
        list += QByteArray::fromStdString(file.native()).toPercentEncoding("/") + ' ';
    return preferences.setValue(recentFilesKey, list.trimmed().toStdString());
}

std::vector<std::filesystem::path> RecentFiles::existing() const {
    std::vector<std::filesystem::path> files = all();
    std::erase_if(files, [](const std::filesystem::path& file) {
        std::error_code unknown;
        return !std::filesystem::exists(file, unknown);
    });
    return files;
}

std::vector<std::filesystem::path> RecentFiles::all() const {
    std::vector<std::filesystem::path> files;
    const auto list = QByteArray::fromStdString(preferences.value(recentFilesKey).value_or(""));
    for (const QByteArray& encoded : list.split(' '))
        if (!encoded.isEmpty()) files.emplace_back(QByteArray::fromPercentEncoding(encoded).toStdString());
    return files;
}

} // namespace orvane::ui
