#include "support/bus_address.h"

namespace {

/// No test may notify the user of the computer or keep it awake.
[[maybe_unused]] const bool isOffTheBuses = [] {
    orvane::test::setBusAddress(orvane::test::noBus);
    return true;
}();

} // namespace
