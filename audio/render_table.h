#pragma once

#include "dsp/realtime.h"
#include "platform/base/unfair_lock.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace orvane::audio {

/// A table that the control side replaces whole while the render pass reads it. The pass holds the table it
/// began with until its end, neither copies nor counts references, and never frees: the control side keeps a
/// replaced table and frees it once no pass can hold it. One control thread, one render thread.
template <class Table>
class RenderTable final {
  public:
    /// A pass's hold on a table, until it goes out of scope. Render thread, real-time safe.
    class Hold final {
      public:
        explicit Hold(RenderTable& from) noexcept : owner(from), table(from.acquire()) {}
        ~Hold() { owner.held.store(nullptr, std::memory_order_release); }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

        const Table& operator*() const noexcept { return *table; }
        const Table* operator->() const noexcept { return table; }

      private:
        RenderTable& owner;
        const Table* table;
    };

    /// Whether another thread still uses the table of a pass that has ended.
    using IsBorrowed = std::function<bool()>;

    explicit RenderTable(IsBorrowed borrowed = [] { return false; })
        : isBorrowed(std::move(borrowed)), current(std::make_unique<const Table>()) {}

    /// Makes the next pass use `next`. Control thread.
    void replace(std::unique_ptr<const Table> next) {
        retired.reserve(retired.size() + 1);
        {
            const std::scoped_lock guard(lock);
            std::swap(current, next);
        }
        retired.push_back(std::move(next));
        freeRetired();
    }

    /// Frees the replaced tables that no pass holds. Returns whether all are freed. Control thread.
    bool freeRetired() {
        const Table* inUse = nullptr;
        {
            const std::scoped_lock guard(lock);
            inUse = held.load(std::memory_order_acquire);
        }
        if (isBorrowed()) return retired.empty();
        std::erase_if(retired, [inUse](const auto& table) { return table.get() != inUse; });
        return retired.empty();
    }

    /// Calls `look` with the current table and with every table that a pass may still hold. Control thread.
    template <class Look>
    void visit(Look&& look) const {
        look(*current);
        for (const auto& table : retired)
            look(*table);
    }

    /// Begins a pass's hold on the current table. Render thread, real-time safe.
    ORVANE_REALTIME Hold hold() noexcept { return Hold(*this); }

  private:
    const Table* acquire() noexcept {
        const std::scoped_lock guard(lock);
        held.store(current.get(), std::memory_order_relaxed);
        return current.get();
    }

    IsBorrowed isBorrowed;
    platform::UnfairLock lock;
    std::unique_ptr<const Table> current;
    std::atomic<const Table*> held = nullptr;
    std::vector<std::unique_ptr<const Table>> retired;
};

} // namespace orvane::audio
