// A plugin's state bytes either give an error or a dictionary that is written and read back as it was.

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
    // Numbers that are not equal to themselves may be in it; equal dictionaries have equal bytes.
    const auto writtenAgain = platform::dataWithPropertyList(again.value());
    fuzz::require(writtenAgain && writtenAgain.value() == written.value());
    return 0;
}
