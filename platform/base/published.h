#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace orvane::platform {

/// Keeps a listener listening while it lives. May outlive the published value, and may end from within any
/// notification, its own included. Owned by the listener. Main thread.
class Subscription final {
  public:
    /// Listens to nothing.
    Subscription() = default;
    Subscription(Subscription&&) noexcept = default;
    Subscription& operator=(Subscription&&) noexcept = default;

  private:
    template <class T>
    friend class Published;

    explicit Subscription(std::shared_ptr<void> kept) : listener(std::move(kept)) {}

    std::shared_ptr<void> listener;
};

/// A value that notifies its subscribers, in the order of their subscription, of every assignment, even of an
/// equal value. Owned by the model it is part of; must not be destroyed within a notification. Main thread.
template <class T>
class Published final {
  public:
    /// Gets a reference to the value, not a copy.
    using Listener = std::function<void(const T&)>;

    explicit Published(T initial = {}) : value(std::move(initial)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    [[nodiscard]] const T& get() const noexcept { return value; }

    /// Replaces the value and notifies every subscriber. Within a notification the value changes at once, and
    /// another round follows the current one; so no listener is re-entered, and each is last notified of the
    /// current value. Throws what a listener has thrown, after all have been notified.
    void set(T next) {
        value = std::move(next);
        if (pendingRounds++ > 0) return;
        std::exception_ptr thrown;
        for (; pendingRounds > 0; --pendingRounds)
            notifyAll(thrown);
        if (thrown) std::rethrow_exception(thrown);
    }

    /// Calls `listener` at every later assignment.
    [[nodiscard]] Subscription subscribe(Listener listener) const {
        if (pendingRounds == 0) std::erase_if(listeners, [](const auto& ended) { return ended.expired(); });
        auto kept = std::make_shared<Listener>(std::move(listener));
        listeners.push_back(kept);
        return Subscription(std::move(kept));
    }

  private:
    void notifyAll(std::exception_ptr& thrown) {
        // A listener that subscribes meanwhile has not missed this assignment.
        const std::size_t subscribed = listeners.size();
        for (std::size_t i = 0; i < subscribed; ++i)
            if (const auto listener = listeners[i].lock()) try {
                    (*listener)(value);
                } catch (...) {
                    thrown = std::current_exception();
                }
    }

    T value;
    /// Subscribing does not change the value.
    mutable std::vector<std::weak_ptr<Listener>> listeners;
    /// The current round of notifications, if any, and those that will follow it.
    std::size_t pendingRounds = 0;
};

} // namespace orvane::platform
