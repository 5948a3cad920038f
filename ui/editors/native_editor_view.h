#pragma once

#include "platform/effects/audio_unit_host.h"
#include "platform/effects/native_editor.h"

#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <memory>

namespace orvane::ui {

/// A window with a plugin's own editor; the editor is closed with the window. Main thread.
class NativeEditorView final : public QWidget, private platform::NativeEditorParent {
  public:
    /// Returns null if the plugin has no editor or it cannot be opened. The display must be an X11 one.
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
    /// In points; empty if the editor does not specify it.
    QSize wanted;
};

} // namespace orvane::ui
