#pragma once

#include "platform/effects/audio_unit_host.h"
#include "platform/effects/native_editor.h"

#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <memory>

namespace orvane::ui {

/// A window with the editor that a plugin brings along, which is closed once the window is. Main thread.
class NativeEditorView final : public QWidget, private platform::NativeEditorParent {
  public:
    /// Null where the plugin brings no editor along, or it cannot be opened. The display is one of X11.
    static std::unique_ptr<NativeEditorView>
    open(std::shared_ptr<platform::AUViewController> editor, Qt::WindowFlags flags);

    [[nodiscard]] QSize sizeHint() const override { return wanted; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    NativeEditorView(std::shared_ptr<platform::AUViewController> editor, Qt::WindowFlags flags);

    [[nodiscard]] std::uintptr_t nativeWindow() const override { return winId(); }
    [[nodiscard]] double scaleFactor() const override { return devicePixelRatio(); }
    void setContentSize(int width, int height) override;

    bool openEditor();
    void idle();

    /// Keeps the plugin alive.
    std::shared_ptr<platform::AUViewController> controller;
    std::unique_ptr<platform::NativeEditor> native;
    QTimer idling;
    /// In points; empty where the editor does not say.
    QSize wanted;
};

} // namespace orvane::ui
