#include "support/bus_address.h"

namespace {

/// No test is to notify whoever works at the machine, or to keep it awake.
[[maybe_unused]] const bool isOffTheBuses = [] {
    orvane::test::setBusAddress(orvane::test::noBus);
    return true;
}();

} // namespace
