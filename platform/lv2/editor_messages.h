#pragma once

#include "dsp/realtime.h"
#include "platform/lv2/message_ring.h"

#include <lv2/atom/atom.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace orvane::platform::lv2 {

/// Carries atoms between a plugin on the render thread and its open editors. An atom travels as an event
/// whose time field holds the port index. Messages that do not fit are dropped, in both directions. Owned by
/// the unit. Main thread, unless noted.
class EditorMessages final {
  public:
    /// An open editor.
    class Listener {
      public:
        virtual ~Listener() = default;
        /// Called for each atom that the plugin sends.
        virtual void messageArrived(std::uint32_t port, const LV2_Atom& atom) = 0;
    };

    /// Registers a listener, which must be removed before it is destroyed, and not from `messageArrived`.
    void add(Listener& listener);
    void remove(Listener& listener);
    /// Passes all pending messages to the listeners.
    void distribute();

    /// `port` must be an atom input; the atom's body follows it in memory. Any thread except the render
    /// thread: editors may have threads of their own.
    void sendToPlugin(std::uint32_t port, const LV2_Atom& atom);

    /// The functions from here on: render thread, real-time safe.
    ORVANE_REALTIME [[nodiscard]] bool hasListeners() const noexcept {
        return hasAnyListener.load(std::memory_order_relaxed);
    }
    /// `event`: header and body.
    ORVANE_REALTIME void sendToEditors(std::span<const std::byte> event) noexcept {
        static_cast<void>(toEditors.write(event));
    }
    /// Valid until the next call; null if no message is left.
    ORVANE_REALTIME const LV2_Atom_Event* nextForPlugin() noexcept { return take(toPlugin, forPlugin); }

  private:
    ORVANE_REALTIME static const LV2_Atom_Event*
    take(MessageRing& ring, MessageRing::Message& message) noexcept {
        return ring.take(message) ? reinterpret_cast<const LV2_Atom_Event*>(message.bytes.data()) : nullptr;
    }

    /// `sending` guards the write end.
    MessageRing toPlugin;
    std::mutex sending;
    MessageRing::Message outgoing;
    MessageRing toEditors;
    MessageRing::Message forPlugin;
    MessageRing::Message forEditors;
    std::vector<Listener*> listeners;
    std::atomic<bool> hasAnyListener = false;
};

} // namespace orvane::platform::lv2
