#include "platform/files/property_list.h"

#include "platform/files/binary_property_list_check.h"

#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <type_traits>

namespace orvane::platform {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
struct FreeNode {
    void operator()(plist_t node) const { plist_free(node); }
};
using Node = std::unique_ptr<std::remove_pointer_t<plist_t>, FreeNode>;

// What was checked before it was read holds no other kinds, no cycle and no depth beyond the limit.

PropertyList valueOf(plist_t node);

PropertyList::Dictionary dictionaryOf(plist_t node) {
    PropertyList::Dictionary dictionary;
    plist_dict_iter made = nullptr;
    plist_dict_new_iter(node, &made);
    const std::unique_ptr<void, Free> iterator(made);
    while (true) {
        char* word = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(node, iterator.get(), &word, &value);
        const std::unique_ptr<char, Free> key(word);
        if (value == nullptr) return dictionary;
        dictionary.emplace(key.get(), valueOf(value));
    }
}

PropertyList::Array arrayOf(plist_t node) {
    PropertyList::Array array;
    plist_array_iter made = nullptr;
    plist_array_new_iter(node, &made);
    const std::unique_ptr<void, Free> iterator(made);
    while (true) {
        plist_t value = nullptr;
        plist_array_next_item(node, iterator.get(), &value);
        if (value == nullptr) return array;
        array.push_back(valueOf(value));
    }
}

PropertyList valueOf(plist_t node) {
    std::uint64_t length = 0;
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return {value != 0};
    }
    case PLIST_UINT: {
        std::uint64_t value = 0;
        plist_get_uint_val(node, &value);
        return {static_cast<std::int64_t>(value)};
    }
    case PLIST_REAL: {
        double value = 0.0;
        plist_get_real_val(node, &value);
        return {value};
    }
    case PLIST_DATA: {
        const char* const content = plist_get_data_ptr(node, &length);
        return {PropertyList::Data(content, content + length)};
    }
    case PLIST_ARRAY:
        return {arrayOf(node)};
    case PLIST_DICT:
        return {dictionaryOf(node)};
    default: {
        const char* const text = plist_get_string_ptr(node, &length);
        return {std::string(text, static_cast<std::size_t>(length))};
    }
    }
}

} // namespace

Result<PropertyList::Dictionary> propertyListWithData(std::span<const std::uint8_t> data) {
    const auto checked = checkBinaryPropertyList(data);
    if (!checked) return checked.error();
    plist_t read = nullptr;
    plist_from_bin(
        reinterpret_cast<const char*>(data.data()), static_cast<std::uint32_t>(data.size()), &read
    );
    const Node node(read);
    if (!node) return Error{"The property list is damaged."};
    return dictionaryOf(node.get());
}

} // namespace orvane::platform
