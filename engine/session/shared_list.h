#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace orvane::session {

/// A list whose copies share its items: copying it, and comparing it with a copy, takes the same short time
/// at any length. A plain value: the items never change, a list is only replaced as a whole. The last copy
/// frees the items. Any thread except audio threads.
template <class Item>
class SharedList final {
  public:
    /// An empty list.
    SharedList() = default;
    SharedList(std::vector<Item> list) : items(std::make_shared<const std::vector<Item>>(std::move(list))) {}

    [[nodiscard]] std::size_t size() const { return items ? items->size() : 0; }
    [[nodiscard]] const Item* begin() const { return items ? items->data() : nullptr; }
    [[nodiscard]] const Item* end() const { return begin() + size(); }

    bool operator==(const SharedList& other) const {
        return items == other.items || std::ranges::equal(*this, other);
    }

  private:
    std::shared_ptr<const std::vector<Item>> items;
};

} // namespace orvane::session
