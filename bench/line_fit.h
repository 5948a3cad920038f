#pragma once

#include <cstddef>
#include <span>

namespace orvane::bench {

/// One measurement: the cost `y` for the amount `x`.
struct Point {
    double x = 0.0;
    double y = 0.0;
};

/// A straight line fitted to points by least squares.
struct Line {
    double intercept = 0.0;
    double slope = 0.0;
    /// The share of the points' variance that the line explains; 1 if all points are on it.
    double rSquared = 0.0;

    /// Requires at least two points with different `x`.
    static Line through(std::span<const Point> points) {
        double meanX = 0.0;
        double meanY = 0.0;
        for (const Point& point : points) {
            meanX += point.x / static_cast<double>(points.size());
            meanY += point.y / static_cast<double>(points.size());
        }
        double xx = 0.0;
        double xy = 0.0;
        double yy = 0.0;
        for (const Point& point : points) {
            xx += (point.x - meanX) * (point.x - meanX);
            xy += (point.x - meanX) * (point.y - meanY);
            yy += (point.y - meanY) * (point.y - meanY);
        }
        return {meanY - xy / xx * meanX, xy / xx, xy * xy / (xx * yy)};
    }
};

} // namespace orvane::bench
