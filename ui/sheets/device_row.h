#pragma once

#include "audio/audio_device_info.h"

#include <QAbstractButton>

namespace orvane::ui {

/// One device in a list, with a mark while it is the selected one. Its `isChecked` follows `setChecked` only,
/// not the clicks. Main thread.
class DeviceRow final : public QAbstractButton {
  public:
    explicit DeviceRow(const audio::AudioDeviceInfo& device);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {}

  private:
    const QString caption;
};

} // namespace orvane::ui
