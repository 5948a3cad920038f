#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace orvane::cli {

/// A document for programs to read. Names in it may be whatever others have made them: what is no text in
/// them is replaced.
inline std::string jsonText(const nlohmann::json& document) {
    return document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

} // namespace orvane::cli
