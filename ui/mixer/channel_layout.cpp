#include "ui/mixer/channel_layout.h"

#include <algorithm>

namespace orvane::ui {

namespace {

constexpr std::size_t stripsPerRow = 16;
constexpr std::size_t stripsPerTwoRows = 32;

} // namespace

std::vector<ChannelLayoutMode> ChannelLayout::offeredModes() const {
    std::vector<ChannelLayoutMode> modes{ChannelLayoutMode::all};
    if (channelCount > stripsPerRow) modes.push_back(ChannelLayoutMode::paginated);
    if (channelCount > stripsPerTwoRows) modes.push_back(ChannelLayoutMode::twoRows);
    return modes;
}

std::size_t ChannelLayout::pageSize() const {
    switch (mode) {
    case ChannelLayoutMode::paginated:
        return stripsPerRow;
    case ChannelLayoutMode::twoRows:
        return stripsPerTwoRows;
    case ChannelLayoutMode::all:
        break;
    }
    return std::max<std::size_t>(channelCount, 1);
}

std::size_t ChannelLayout::pageCount() const {
    return std::max<std::size_t>((channelCount + pageSize() - 1) / pageSize(), 1);
}

StripRange ChannelLayout::stripsOf(std::size_t pageIndex) const {
    const std::size_t first = std::min(channelCount, pageIndex * pageSize());
    return {first, std::min(channelCount, first + pageSize())};
}

std::size_t ChannelLayout::rowLength() const {
    return isPaged() ? stripsPerRow : pageSize();
}

std::vector<StripRange> ChannelLayout::rows() const {
    const auto [first, end] = stripsOf(isPaged() ? page : 0);
    std::vector<StripRange> cut;
    for (std::size_t begin = first; begin < end; begin += rowLength())
        cut.push_back({begin, std::min(end, begin + rowLength())});
    return cut;
}

QString ChannelLayout::label(ChannelLayoutMode of) const {
    switch (of) {
    case ChannelLayoutMode::paginated:
        return QStringLiteral("16 at a Time");
    case ChannelLayoutMode::twoRows:
        return QStringLiteral("32 (2 Rows)");
    case ChannelLayoutMode::all:
        break;
    }
    return QStringLiteral("All %1").arg(channelCount);
}

QString ChannelLayout::pageTitle(std::size_t pageIndex) const {
    const auto [first, end] = stripsOf(pageIndex);
    return QStringLiteral("%1-%2").arg(first + 1).arg(end);
}

} // namespace orvane::ui
