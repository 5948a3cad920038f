#include "histogram_plot.h"

#include <fmt/format.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace orvane::bench {

namespace {

// In pixels.
constexpr double width = 860.0;
constexpr double height = 400.0;
constexpr double left = 70.0;
constexpr double top = 50.0;
constexpr double right = 40.0;
constexpr double bottom = 50.0;

// The range of the axes, as powers of ten.
constexpr double firstDecade = 0.0;
constexpr double lastDecade = 5.0;
constexpr double mostDecade = 6.0;
/// The position of an empty bin: below that of a single block.
constexpr double noneDecade = -0.5;

double x(double microseconds) {
    const double share = (std::log10(microseconds) - firstDecade) / (lastDecade - firstDecade);
    return left + share * (width - left - right);
}

double y(double count) {
    const double decade = count < 1.0 ? noneDecade : std::log10(count);
    return height - bottom - (decade - noneDecade) / (mostDecade - noneDecade) * (height - top - bottom);
}

std::string line(double x1, double y1, double x2, double y2, const char* style) {
    return fmt::format(
        "<line x1='{:.1f}' y1='{:.1f}' x2='{:.1f}' y2='{:.1f}' style='{}'/>\n", x1, y1, x2, y2, style
    );
}

std::string text(double atX, double atY, const char* anchor, std::string_view words) {
    return fmt::format("<text x='{:.1f}' y='{:.1f}' text-anchor='{}'>{}</text>\n", atX, atY, anchor, words);
}

std::string axes() {
    std::string svg;
    constexpr const char* units[] = {"1 us", "10 us", "100 us", "1 ms", "10 ms", "100 ms"};
    for (int decade = 0; decade <= static_cast<int>(lastDecade); ++decade) {
        const double at = x(std::pow(10.0, decade));
        svg += line(at, top, at, height - bottom, "stroke:#ccc");
        svg += text(at, height - bottom + 18.0, "middle", units[decade]);
    }
    for (int decade = 0; decade <= static_cast<int>(mostDecade); ++decade) {
        const double at = y(std::pow(10.0, decade));
        svg += line(left, at, width - right, at, "stroke:#ccc");
        svg += text(left - 8.0, at + 4.0, "end", fmt::format("{:.0f}", std::pow(10.0, decade)));
    }
    return svg + text(left, top - 10.0, "end", "blocks");
}

std::string curve(const PlottedHistogram& plotted) {
    std::string points;
    for (std::size_t bin = 0; bin < Histogram::size; ++bin) {
        const double edge = Histogram::upperEdge(bin);
        if (edge < std::pow(10.0, firstDecade) || edge > std::pow(10.0, lastDecade)) continue;
        const double count = static_cast<double>(plotted.histogram.count(bin));
        fmt::format_to(std::back_inserter(points), "{:.1f},{:.1f} ", x(edge), y(count));
    }
    return fmt::format(
        "<polyline points='{}' style='fill:none;stroke:{};stroke-width:1.5'/>\n", points, plotted.colour
    );
}

} // namespace

void plot(
    const std::filesystem::path& path, const std::string& title, std::span<const PlottedHistogram> curves,
    double periodMicroseconds
) {
    std::string svg = fmt::format(
        "<svg xmlns='http://www.w3.org/2000/svg' width='{0:.0f}' height='{1:.0f}' font-family='sans-serif' "
        "font-size='12'>\n<rect width='{0:.0f}' height='{1:.0f}' fill='white'/>\n",
        width, height
    );
    svg += text(width / 2.0, 20.0, "middle", title) + axes();
    const double period = x(periodMicroseconds);
    svg += line(period, top, period, height - bottom, "stroke:#c00;stroke-dasharray:4");
    svg += text(period, top - 6.0, "middle", "period");
    double legendX = left;
    for (const PlottedHistogram& plotted : curves) {
        svg += curve(plotted);
        svg +=
            line(legendX, height - 14.0, legendX + 24.0, height - 14.0, ("stroke:" + plotted.colour).c_str());
        svg += text(legendX + 30.0, height - 10.0, "start", plotted.name);
        legendX += 260.0;
    }
    std::ofstream file(path);
    file << svg << "</svg>\n";
    if (!file.flush())
        throw std::runtime_error(fmt::format("The plot {} could not be written.", path.string()));
}

} // namespace orvane::bench
