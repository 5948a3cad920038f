#pragma once

#include <QWidget>

#include <functional>

namespace orvane::ui {

/// The sizes that a session can be given, in their order.
inline constexpr int offeredChannelCounts[] = {2, 4, 8, 12, 16, 24, 32, 48};

/// Asks for the number of channels of a session, one of the sizes that are offered. Fills a window and stands
/// in its middle. Main thread.
class ChannelCountPickerView final : public QWidget {
  public:
    struct Form {
        /// Gets the chosen size.
        std::function<void(int)> onSelect;
        /// Whether there is a session already.
        bool isReconfiguring = false;
        /// Empty where there is no way back.
        std::function<void()> onCancel = {};
    };

    explicit ChannelCountPickerView(const Form& form, QWidget* parent = nullptr);
};

} // namespace orvane::ui
