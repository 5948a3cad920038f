#include "ui/editors/x11_windows.h"

#include <QGuiApplication>

// Included last, because it defines common words as macros.
#include <X11/Xlib.h>

namespace orvane::ui {

namespace {

/// Returns null without X11. Qt ignores X11 errors, so none ends the program.
Display* display() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->display();
}

} // namespace

bool isOnX11() {
    return display() != nullptr;
}

void waitForX11() {
    if (Display* const server = display()) XSync(server, False);
}

std::optional<QSize> sizeOfX11Window(WId window) {
    Display* const server = display();
    if (server == nullptr || window == 0) return std::nullopt;
    Window root = 0;
    int x = 0;
    int y = 0;
    unsigned int width = 0;
    unsigned int height = 0;
    unsigned int border = 0;
    unsigned int depth = 0;
    if (XGetGeometry(server, window, &root, &x, &y, &width, &height, &border, &depth) == 0)
        return std::nullopt;
    return QSize(static_cast<int>(width), static_cast<int>(height));
}

void resizeX11Window(WId window, QSize size) {
    Display* const server = display();
    if (server == nullptr || window == 0) return;
    XResizeWindow(
        server, window, static_cast<unsigned int>(size.width()), static_cast<unsigned int>(size.height())
    );
    XFlush(server);
}

} // namespace orvane::ui
