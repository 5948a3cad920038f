#include "platform/lv2/state_value.h"

#include "platform/files/property_list.h"

#include <lv2/atom/atom.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

// The keys of an encoded value.
constexpr const char* typeKey = "type";
constexpr const char* flagsKey = "flags";
constexpr const char* valueKey = "value";
constexpr const char* elementTypeKey = "elementType";

/// The types whose body is a number, with its size in bytes.
constexpr std::pair<std::string_view, std::size_t> numberTypes[] = {
    {LV2_ATOM__Int, 4},
    {LV2_ATOM__Bool, 4},
    {LV2_ATOM__Float, 4},
    {LV2_ATOM__Long, 8},
    {LV2_ATOM__Double, 8}};

/// The types whose body is meaningless outside this process.
constexpr std::string_view localTypes[] = {LV2_ATOM__Literal,  LV2_ATOM__Object,  LV2_ATOM__Blank,
                                           LV2_ATOM__Resource, LV2_ATOM__Tuple,   LV2_ATOM__Property,
                                           LV2_ATOM__Event,    LV2_ATOM__Sequence};

std::size_t numberSize(std::string_view type) {
    const auto* const number =
        std::ranges::find(numberTypes, type, &std::pair<std::string_view, std::size_t>::first);
    return number == std::ranges::end(numberTypes) ? 0 : number->second;
}

bool isLocal(std::string_view type) {
    return std::ranges::find(localTypes, type) != std::ranges::end(localTypes);
}

template <class T>
std::optional<T> read(std::span<const std::byte> bytes) {
    if (bytes.size() < sizeof(T)) return std::nullopt;
    T value;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

template <class T>
std::vector<std::byte> bytesOf(const T& value) {
    const auto bytes = std::as_bytes(std::span(&value, 1));
    return {bytes.begin(), bytes.end()};
}

PropertyList::Data dataOf(std::span<const std::byte> bytes) {
    PropertyList::Data data(bytes.size());
    std::ranges::transform(bytes, data.begin(), [](std::byte b) { return static_cast<std::uint8_t>(b); });
    return data;
}

/// Adds a vector of numbers: the name of the element type, then the elements.
bool encodeVector(std::span<const std::byte> body, const UridMap& urids, PropertyList::Dictionary& encoded) {
    const auto head = read<LV2_Atom_Vector_Body>(body);
    const char* const elementType = head ? urids.unmap(head->child_type) : nullptr;
    if (elementType == nullptr || numberSize(elementType) == 0) return false;
    encoded[elementTypeKey].value = std::string(elementType);
    encoded[valueKey].value = dataOf(body.subspan(sizeof *head));
    return true;
}

std::optional<std::vector<std::byte>>
decodeVector(std::vector<std::byte> elements, const PropertyList::Dictionary& encoded, UridMap& urids) {
    const auto* const elementType = valueAt<std::string>(encoded, elementTypeKey);
    const std::size_t size = elementType == nullptr ? 0 : numberSize(*elementType);
    if (size == 0 || elements.size() % size != 0) return std::nullopt;
    auto body = bytesOf(LV2_Atom_Vector_Body{static_cast<std::uint32_t>(size), urids.map(*elementType)});
    std::ranges::copy(elements, std::back_inserter(body));
    return body;
}

bool canHaveBody(std::string_view type, std::span<const std::byte> body) {
    if (const std::size_t size = numberSize(type); size != 0) return body.size() == size;
    // Plugins read texts up to the terminating zero.
    if (type == LV2_ATOM__String || type == LV2_ATOM__URI || type == LV2_ATOM__Path)
        return !body.empty() && body.back() == std::byte{0};
    return !isLocal(type);
}

} // namespace

std::optional<PropertyList::Dictionary> encode(const StateValue& value, const UridMap& urids) {
    const char* const type = urids.unmap(value.type);
    if (type == nullptr || isLocal(type)) return std::nullopt;
    PropertyList::Dictionary encoded;
    encoded[typeKey].value = std::string(type);
    encoded[flagsKey].value = static_cast<std::int64_t>(value.flags);
    if (type == std::string_view(LV2_ATOM__URID)) {
        const auto urid = read<LV2_URID>(value.body);
        const char* const uri = urid ? urids.unmap(*urid) : nullptr;
        if (uri == nullptr) return std::nullopt;
        encoded[valueKey].value = std::string(uri);
    } else if (type == std::string_view(LV2_ATOM__Vector)) {
        if (!encodeVector(value.body, urids, encoded)) return std::nullopt;
    } else {
        encoded[valueKey].value = dataOf(value.body);
    }
    return encoded;
}

std::optional<StateValue> decode(const PropertyList& encoded, UridMap& urids) {
    const auto* const dictionary = std::get_if<PropertyList::Dictionary>(&encoded.value);
    if (dictionary == nullptr) return std::nullopt;
    const auto* const type = valueAt<std::string>(*dictionary, typeKey);
    const auto* const flags = valueAt<std::int64_t>(*dictionary, flagsKey);
    if (type == nullptr || type->empty() || flags == nullptr) return std::nullopt;
    if (*flags < 0 || *flags > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    StateValue value{.flags = static_cast<std::uint32_t>(*flags)};

    if (*type == LV2_ATOM__URID) {
        const auto* const uri = valueAt<std::string>(*dictionary, valueKey);
        if (uri == nullptr || uri->empty()) return std::nullopt;
        value.body = bytesOf(urids.map(*uri));
    } else {
        const auto* const data = valueAt<PropertyList::Data>(*dictionary, valueKey);
        if (data == nullptr || data->size() > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
        const auto bytes = std::as_bytes(std::span(*data));
        value.body.assign(bytes.begin(), bytes.end());
        if (*type == LV2_ATOM__Vector) {
            auto body = decodeVector(std::move(value.body), *dictionary, urids);
            if (!body) return std::nullopt;
            value.body = *std::move(body);
        } else if (!canHaveBody(*type, value.body)) {
            return std::nullopt;
        }
    }
    value.type = urids.map(*type);
    return value;
}

} // namespace orvane::platform::lv2
