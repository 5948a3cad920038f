// Renders an SVG picture to PNG files of the given sizes.
// Usage: orvane_render_icon PICTURE.svg SIZE FILE.png [SIZE FILE.png]...

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc < 2 || argc % 2 != 0) return EXIT_FAILURE;
    QSvgRenderer picture(QString::fromLocal8Bit(argv[1]));
    if (!picture.isValid()) {
        std::fprintf(stderr, "%s is not a picture.\n", argv[1]);
        return EXIT_FAILURE;
    }
    for (int argument = 2; argument < argc; argument += 2) {
        const int size = std::atoi(argv[argument]);
        QImage icon(size, size, QImage::Format_ARGB32);
        icon.fill(Qt::transparent);
        QPainter painter(&icon);
        picture.render(&painter);
        painter.end();
        if (icon.save(QString::fromLocal8Bit(argv[argument + 1]))) continue;
        std::fprintf(stderr, "%s could not be written.\n", argv[argument + 1]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
