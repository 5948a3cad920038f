#pragma once

#include <QWidget>

#include <functional>

namespace orvane::ui {

/// The channel counts that a session can have, in order.
inline constexpr int offeredChannelCounts[] = {2, 4, 8, 12, 16, 24, 32, 48};

/// Asks for the number of channels of a session. Fills a window, centred. Main thread.
class ChannelCountPickerView final : public QWidget {
  public:
    struct Form {
        /// Receives the chosen count.
        std::function<void(int)> onSelect;
        /// Whether a session exists already.
        bool isReconfiguring = false;
        /// Empty if the choice cannot be cancelled.
        std::function<void()> onCancel = {};
    };

    explicit ChannelCountPickerView(const Form& form, QWidget* parent = nullptr);
};

} // namespace orvane::ui
