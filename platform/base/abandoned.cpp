#include "platform/base/abandoned.h"

#include <utility>
#include <vector>

namespace orvane::platform {

namespace {

/// Never destroyed, not even with the process's static objects.
std::vector<std::shared_ptr<void>>& abandonedObjects() {
    static auto* const objects = new std::vector<std::shared_ptr<void>>;
    return *objects;
}

} // namespace

void abandon(std::shared_ptr<void> object) {
    abandonedObjects().push_back(std::move(object));
}

bool isAnythingAbandoned() noexcept {
    return !abandonedObjects().empty();
}

} // namespace orvane::platform
