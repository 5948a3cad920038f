#pragma once

#include <QString>

#include <cstddef>
#include <vector>

namespace orvane::ui {

/// The layout of the strips.
enum class ChannelLayoutMode { all, paginated, twoRows };

/// The strips from `first` up to but excluding `end`. A plain value.
struct StripRange {
    std::size_t first = 0;
    std::size_t end = 0;

    bool operator==(const StripRange&) const = default;
};

/// The visible strips of a mixer. A plain value.
struct ChannelLayout {
    std::size_t channelCount = 0;
    ChannelLayoutMode mode = ChannelLayoutMode::paginated;
    std::size_t page = 0;

    bool operator==(const ChannelLayout&) const = default;

    /// The modes offered for this number of channels, in order; never empty.
    [[nodiscard]] std::vector<ChannelLayoutMode> offeredModes() const;
    [[nodiscard]] bool isPaged() const { return mode != ChannelLayoutMode::all; }
    [[nodiscard]] std::size_t pageCount() const;
    [[nodiscard]] StripRange stripsOf(std::size_t pageIndex) const;
    [[nodiscard]] std::size_t pageOf(std::size_t strip) const { return strip / pageSize(); }
    /// The length of a full row.
    [[nodiscard]] std::size_t rowLength() const;
    /// The visible strips, one range per row.
    [[nodiscard]] std::vector<StripRange> rows() const;

    [[nodiscard]] QString label(ChannelLayoutMode of) const;
    /// The first and the last channel of a page, counted from 1.
    [[nodiscard]] QString pageTitle(std::size_t pageIndex) const;

  private:
    [[nodiscard]] std::size_t pageSize() const;
};

} // namespace orvane::ui
