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

/// The atoms that a plugin on the render thread and its open editors send each other. On their way they are
/// events whose time is the index of the port that they are of. Owned by the unit. What finds no room is
/// dropped, either way. Main thread, but for what says otherwise.
class EditorMessages final {
  public:
    /// An open editor.
    class Listener {
      public:
        virtual ~Listener() = default;
        /// The plugin has sent it.
        virtual void messageArrived(std::uint32_t port, const LV2_Atom& atom) = 0;
    };

    /// From now on the listener is told of what the plugin sends; it removes itself before it goes, and not
    /// while it is being told.
    void add(Listener& listener);
    void remove(Listener& listener);
    /// Tells all listeners of what has arrived.
    void distribute();

    /// `port` is an atom input. The atom is followed by its body. Any thread but the render thread: editors
    /// have threads of their own.
    void sendToPlugin(std::uint32_t port, const LV2_Atom& atom);

    /// Render thread, real-time safe, as what follows.
    ORVANE_REALTIME [[nodiscard]] bool hasListeners() const noexcept {
        return isHeard.load(std::memory_order_relaxed);
    }
    /// An event, whole.
    ORVANE_REALTIME void sendToEditors(std::span<const std::byte> event) noexcept {
        static_cast<void>(toEditors.write(event));
    }
    /// Valid until the next call; null where there is no more.
    ORVANE_REALTIME const LV2_Atom_Event* nextForPlugin() noexcept { return take(toPlugin, forPlugin); }

  private:
    ORVANE_REALTIME static const LV2_Atom_Event*
    take(MessageRing& ring, MessageRing::Message& message) noexcept {
        return ring.take(message) ? reinterpret_cast<const LV2_Atom_Event*>(message.bytes.data()) : nullptr;
    }

    /// Its writer has the mutex.
    MessageRing toPlugin;
    std::mutex sending;
    MessageRing::Message outgoing;
    MessageRing toEditors;
    MessageRing::Message forPlugin;
    MessageRing::Message forEditors;
    std::vector<Listener*> listeners;
    std::atomic<bool> isHeard = false;
};

} // namespace orvane::platform::lv2
