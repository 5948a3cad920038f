#include "ui/strip/installed_components.h"

#include <QMetaObject>

#include <utility>

namespace orvane::ui {

InstalledComponents::InstalledComponents(std::function<List()> lookUp)
    : worker([this, look = std::move(lookUp)] {
          QMetaObject::invokeMethod(
              &receiver, [this, list = look()] { keep(list); }, Qt::QueuedConnection
          );
      }) {}

InstalledComponents::~InstalledComponents() {
    worker.join();
}

void InstalledComponents::whenFound(std::function<void()> action) {
    if (found.get()) return action();
    waiting.push_back(std::move(action));
}

void InstalledComponents::keep(List components) {
    found.set(std::move(components));
    for (const auto& action : std::exchange(waiting, {}))
        action();
}

} // namespace orvane::ui
