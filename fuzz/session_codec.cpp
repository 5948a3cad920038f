// A session file results in an error, or in a session that survives a round trip unchanged.

#include "engine/session/mixer_document_codec.h"
#include "fuzzer.h"

#include <string_view>

using namespace orvane;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read = session::decodeMixerDocument({reinterpret_cast<const char*>(data), size});
    if (!read) {
        fuzz::require(!read.error().description.empty());
        return 0;
    }
    const auto written = session::encodeMixerDocument(read.value());
    fuzz::require(written.hasValue());
    const auto again = session::decodeMixerDocument(written.value());
    fuzz::require(again && again.value() == read.value());
    return 0;
}
