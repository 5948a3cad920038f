#pragma once

#include "audio/audio_device_info.h"

#include <QAbstractButton>

namespace orvane::ui {

/// One device in a list, marked if it is selected. Only `setChecked` changes `isChecked`; clicks do not. Main
/// thread.
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
