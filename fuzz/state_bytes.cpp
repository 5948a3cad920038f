// A plugin's state bytes result in an error, or in a dictionary that survives a round trip unchanged.

#include "fuzzer.h"
#include "platform/files/property_list.h"

using namespace orvane;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read = platform::propertyListWithData({data, size});
    if (!read) return 0;
    const auto written = platform::dataWithPropertyList(read.value());
    fuzz::require(written.hasValue());
    const auto again = platform::propertyListWithData(written.value());
    fuzz::require(again.hasValue());
    // Compares bytes, because a NaN does not equal itself.
    const auto writtenAgain = platform::dataWithPropertyList(again.value());
    fuzz::require(writtenAgain && writtenAgain.value() == written.value());
    return 0;
}
