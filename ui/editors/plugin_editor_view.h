#pragma once

#include "platform/effects/audio_unit_host.h"

#include <QTimer>
#include <QWidget>

#include <memory>
#include <vector>

class QScrollArea;
class QVBoxLayout;

namespace orvane::ui {

class ParameterRow;

/// A panel of a plugin's parameters, in the plugin's order and groups. While it is visible, it also shows
/// changes made elsewhere. Main thread.
class PluginEditorView final : public QWidget {
  public:
    explicit PluginEditorView(std::shared_ptr<platform::AUViewController> editor, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void addRows(QVBoxLayout& lines);
    void refresh();

    /// Keeps the plugin alive.
    std::shared_ptr<platform::AUViewController> controller;
    QScrollArea* const area;
    std::vector<ParameterRow*> rows;
    QTimer refreshing;
};

} // namespace orvane::ui
