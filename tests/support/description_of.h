#pragma once

#include "platform/base/result.h"

#include <string>

namespace orvane::test {

/// What a result says of its failure; "success" where there was none.
template <class Value>
std::string descriptionOf(const platform::Result<Value>& result) {
    return result ? "success" : result.error().description;
}

} // namespace orvane::test
