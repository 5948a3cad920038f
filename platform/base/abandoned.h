#pragma once

#include <memory>

namespace orvane::platform {

/// Keeps an object until the process ends, because a thread that does not return from foreign code may still
/// use it. Main thread.
void abandon(std::shared_ptr<void> object);

/// Whether an object has been abandoned, so that the process must end without destroying its objects. Main
/// thread.
[[nodiscard]] bool isAnythingAbandoned() noexcept;

} // namespace orvane::platform
