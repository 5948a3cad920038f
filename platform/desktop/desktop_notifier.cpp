#include "platform/desktop/desktop_notifier.h"

#include "platform/desktop/bus_call.h"

namespace orvane::platform::desktop {

namespace {

constexpr BusMethod notify{
    MessageBus::session, "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
    "org.freedesktop.Notifications", "Notify"};

/// The name of the desktop entry and of its icon.
constexpr const char* application = "app.orvane.mixer";
constexpr unsigned replacesNothing = 0;
constexpr int noActions = 0;
constexpr int twoHints = 2;
constexpr int critical = 2;
constexpr int untilTheDesktopThinksFit = -1;

/// Escapes plain text for the body of a notification, which may be markup.
std::string escaped(std::string_view text) {
    std::string markup;
    for (const char character : text)
        switch (character) {
        case '&':
            markup += "&amp;";
            break;
        case '<':
            markup += "&lt;";
            break;
        case '>':
            markup += "&gt;";
            break;
        default:
            markup += character;
        }
    return markup;
}

} // namespace

DesktopNotifier::DesktopNotifier(MainThread& thread, SystemLog& systemLog)
    : mainThread(thread), log(systemLog) {}

DesktopNotifier::~DesktopNotifier() = default;

void DesktopNotifier::show(const std::string& title, std::string_view text) {
    const auto complain = [this](const Result<sd_bus_message*, BusFailure>& answer) {
        if (!answer)
            log.post(
                LogLevel::standard, "Desktop",
                {"The desktop shows no notification, because ", answer.error().reason, "."}
            );
    };
    last = std::make_unique<BusCall>(
        mainThread, notify, complain, "susssasa{sv}i", "ORVANE", replacesNothing, application, title.c_str(),
        escaped(text).c_str(), noActions, twoHints, "urgency", "y", critical, "desktop-entry", "s",
        application, untilTheDesktopThinksFit
    );
}

} // namespace orvane::platform::desktop
