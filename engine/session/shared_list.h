#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace orvane::session {

/// A list whose copies share its items, so that to copy it, and to compare it with a copy, takes the same
/// short time whatever it holds. A plain value: the items of a list never change, it is replaced as a whole.
/// The last copy frees them; not for audio threads, any other may have copies.
template <class Item>
class SharedList final {
  public:
    /// Holds nothing.
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
