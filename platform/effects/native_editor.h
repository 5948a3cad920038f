#pragma once

#include <cstdint>

namespace orvane::platform {

// The editors that effects bring along, in X11 windows.

/// The window that an editor is shown in, as the editor knows it. Outlives the editor. Main thread.
class NativeEditorParent {
  public:
    virtual ~NativeEditorParent() = default;

    /// The X11 window that the editor makes its own a child of. The display server has it.
    [[nodiscard]] virtual std::uintptr_t nativeWindow() const = 0;
    /// How many pixels there are to a point.
    [[nodiscard]] virtual double scaleFactor() const = 0;
    /// The editor wants this size, in pixels, both 1 at least. Also while it is being opened.
    virtual void setContentSize(int width, int height) = 0;
};

/// An open editor; destroying it closes it. Keeps its unit alive. Main thread, with what it calls of the
/// plugin.
class NativeEditor {
  public:
    virtual ~NativeEditor() = default;

    /// The editor's own X11 window; 0 where it does not tell.
    [[nodiscard]] virtual std::uintptr_t nativeWindow() const = 0;
    /// The user cannot choose its size.
    [[nodiscard]] virtual bool hasFixedSize() const = 0;

    /// How often `idle` is called in a second.
    static constexpr int idleRate = 30;
    /// Brings editor and unit up to date with each other. False where the editor asks to be closed or
    /// has failed.
    virtual bool idle() = 0;
};

} // namespace orvane::platform
