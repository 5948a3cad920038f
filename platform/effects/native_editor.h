#pragma once

#include <cstdint>

namespace orvane::platform {

// Editors that effects provide, in X11 windows.

/// The window around an editor, as seen by the editor. Must outlive the editor. Main thread.
class NativeEditorParent {
  public:
    virtual ~NativeEditorParent() = default;

    /// The X11 window that becomes the parent of the editor's window. The display server knows it already.
    [[nodiscard]] virtual std::uintptr_t nativeWindow() const = 0;
    /// Pixels per point.
    [[nodiscard]] virtual double scaleFactor() const = 0;
    /// Sets the size that the editor asks for, in pixels, both at least 1. May be called while the editor is
    /// being opened.
    virtual void setContentSize(int width, int height) = 0;
};

/// An open editor; destroying it closes it. Keeps its unit alive. Calls the plugin on the main thread only.
class NativeEditor {
  public:
    virtual ~NativeEditor() = default;

    /// The editor's own X11 window; 0 if it is unknown.
    [[nodiscard]] virtual std::uintptr_t nativeWindow() const = 0;
    /// Whether the user cannot resize it.
    [[nodiscard]] virtual bool hasFixedSize() const = 0;

    /// Calls of `idle` per second.
    static constexpr int idleRate = 30;
    /// Synchronises editor and unit. Returns false if the editor asks to be closed or has failed.
    virtual bool idle() = 0;
};

} // namespace orvane::platform
