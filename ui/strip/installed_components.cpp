#include "ui/strip/installed_components.h"

#include <QMetaObject>

#include <utility>

namespace orvane::ui {

InstalledComponents::InstalledComponents(std::function<List()> lookUp)
    : worker([this, look = std::move(lookUp)] {
          QMetaObject::invokeMethod(
              &receiver, [this, list = look()] { found.set(list); }, Qt::QueuedConnection
          );
      }) {}

InstalledComponents::~InstalledComponents() {
    worker.join();
}

} // namespace orvane::ui
