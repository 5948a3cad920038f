#pragma once

#include "platform/base/result.h"

#include <string>

namespace orvane::test {

/// The error message of a result; "success" if it has none.
template <class Value>
std::string descriptionOf(const platform::Result<Value>& result) {
    return result ? "success" : result.error().description;
}

} // namespace orvane::test
