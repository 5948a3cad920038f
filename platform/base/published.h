#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace orvane::platform {

/// Keeps a listener listening while it lives. May outlive the published value, and may end from within any
/// notification, its own included. Owned by whoever listens. Main thread.
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

/// A value whose subscribers are told, in subscription order, at every assignment, also of an equal value.
/// Owned by the model it is part of; not to be destroyed from within a notification. Main thread.
template <class T>
class Published final {
  public:
    /// Gets the value itself, not a copy of it.
    using Listener = std::function<void(const T&)>;

    explicit Published(T initial = {}) : value(std::move(initial)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    [[nodiscard]] const T& get() const noexcept { return value; }

    /// Replaces the value and tells every subscriber. From within a notification the value changes at once,
    /// and once the round under way has ended one more tells everybody of it; so no listener is entered
    /// twice, and the last that each hears is the value as it is. What a listener throws comes out once
    /// everybody has been told.
    void set(T next) {
        value = std::move(next);
        if (pendingRounds++ > 0) return;
        std::exception_ptr thrown;
        for (; pendingRounds > 0; --pendingRounds)
            tellEverybody(thrown);
        if (thrown) std::rethrow_exception(thrown);
    }

    /// Calls `listener` at every assignment from now on, not for the value as it is.
    [[nodiscard]] Subscription subscribe(Listener listener) const {
        if (pendingRounds == 0) std::erase_if(listeners, [](const auto& ended) { return ended.expired(); });
        auto kept = std::make_shared<Listener>(std::move(listener));
        listeners.push_back(kept);
        return Subscription(std::move(kept));
    }

  private:
    void tellEverybody(std::exception_ptr& thrown) {
        // Who subscribes meanwhile has not missed this assignment.
        const std::size_t subscribed = listeners.size();
        for (std::size_t i = 0; i < subscribed; ++i)
            if (const auto listener = listeners[i].lock()) try {
                    (*listener)(value);
                } catch (...) {
                    thrown = std::current_exception();
                }
    }

    T value;
    /// Listening changes nothing about the value.
    mutable std::vector<std::weak_ptr<Listener>> listeners;
    /// The round under way, if any, and those that are to follow it.
    std::size_t pendingRounds = 0;
};

} // namespace orvane::platform
