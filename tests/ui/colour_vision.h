#pragma once

#include <QImage>
#include <QString>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace orvane::test {

/// Shows a picture as people with a kind of colour blindness see it. The matrices, for linear RGB, are those
/// of severity 1 in Machado, Oliveira and Fernandes, "A Physiologically-based Model for Simulation of Color
/// Vision Deficiency", IEEE TVCG 15 (6), 2009, doi:10.1109/TVCG.2009.113.
class ColourVision final {
  public:
    /// `kind`: "protanopia", "deuteranopia", or "usual", which changes nothing.
    explicit ColourVision(const QString& kind) : matrix(matrixOf(kind)) {
        for (std::size_t code = 0; code < linear.size(); ++code) {
            const double share = static_cast<double>(code) / 255.0;
            linear[code] = share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
        }
    }

    [[nodiscard]] QImage seen(QImage picture) const {
        picture.convertTo(QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, seen(picture.pixel(x, y)));
        return picture;
    }

  private:
    using Matrix = std::array<std::array<double, 3>, 3>;

    static Matrix matrixOf(const QString& kind) {
        if (kind == "protanopia")
            return {
                {{0.152286, 1.052583, -0.204868},
                 {0.114503, 0.786281, 0.099216},
                 {-0.003882, -0.048116, 1.051998}}};
        if (kind == "deuteranopia")
            return {
                {{0.367322, 0.860646, -0.227968},
                 {0.280085, 0.672501, 0.047413},
                 {-0.011820, 0.042940, 0.968881}}};
        if (kind == "usual") return {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
        throw std::runtime_error("There is no colour vision " + kind.toStdString());
    }

    [[nodiscard]] QRgb seen(QRgb color) const {
        const auto lightOf = [this](int code) { return linear[static_cast<std::size_t>(code)]; };
        const double red = lightOf(qRed(color));
        const double green = lightOf(qGreen(color));
        const double blue = lightOf(qBlue(color));
        const auto codeOf = [&](const std::array<double, 3>& row) {
            const double light = std::clamp(row[0] * red + row[1] * green + row[2] * blue, 0.0, 1.0);
            const double share =
                light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
            return static_cast<int>(std::lround(share * 255.0));
        };
        return qRgb(codeOf(matrix[0]), codeOf(matrix[1]), codeOf(matrix[2]));
    }

    const Matrix matrix;
    std::array<double, 256> linear{};
};

} // namespace orvane::test
