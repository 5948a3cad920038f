#include "engine/session/document_limits.h"

#include <string>

namespace orvane::session {

std::optional<platform::Error> DocumentLimits::excess(std::size_t bytes, std::size_t values) const {
    if (bytes > size)
        return platform::Error{
            "The content takes more than the " + std::to_string(size >> 20U) + " MiB that a file may have."};
    if (values > valueCount)
        return platform::Error{
            "The content has more than the " + std::to_string(valueCount) + " values that a file may have."};
    return std::nullopt;
}

} // namespace orvane::session
