#include "app/display.h"

#include <X11/Xlib.h>

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace orvane::app {

namespace {

std::string_view variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

bool hasXServer() {
    if (variable("DISPLAY").empty()) return false;
    Display* const server = XOpenDisplay(nullptr);
    if (server == nullptr) return false;
    XCloseDisplay(server);
    return true;
}

bool hasCompositor() {
    if (!variable("WAYLAND_SOCKET").empty()) return true;
    const std::string_view named = variable("WAYLAND_DISPLAY");
    const std::filesystem::path name(named.empty() ? "wayland-0" : named);
    const std::string_view folder = variable("XDG_RUNTIME_DIR");
    if (name.is_relative() && folder.empty()) return false;
    std::error_code unknown;
    return std::filesystem::is_socket(std::filesystem::path(folder) / name, unknown);
}

} // namespace

bool hasDisplay() {
    const std::string_view platform = variable("QT_QPA_PLATFORM");
    const bool isUsual = platform.empty() || platform.starts_with("xcb") || platform.starts_with("wayland");
    return !isUsual || hasXServer() || hasCompositor();
}

} // namespace orvane::app
