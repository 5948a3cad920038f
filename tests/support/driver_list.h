#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace orvane::test {

/// A list of one driver.
template <class Driver>
std::vector<std::unique_ptr<Driver>> listOf(std::unique_ptr<Driver> driver) {
    std::vector<std::unique_ptr<Driver>> drivers;
    drivers.push_back(std::move(driver));
    return drivers;
}

} // namespace orvane::test
