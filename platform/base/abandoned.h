#pragma once

#include <memory>

namespace orvane::platform {

/// Keeps an object to the end of the process, because a thread that does not come back from foreign code may
/// still touch it. Main thread.
void abandon(std::shared_ptr<void> object);

/// Whether something has been abandoned, so that the process must end without destroying what the program
/// consists of. Main thread.
[[nodiscard]] bool isAnythingAbandoned() noexcept;

} // namespace orvane::platform
