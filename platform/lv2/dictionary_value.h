#pragma once

#include "platform/files/property_list.h"

#include <string>
#include <variant>

namespace orvane::platform::lv2 {

/// The value under a key; null if it is missing or not a T.
template <class T>
const T* valueAt(const PropertyList::Dictionary& dictionary, const std::string& key) {
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : std::get_if<T>(&found->second.value);
}

} // namespace orvane::platform::lv2
