#include "ui/windows/plugin_editor_windows.h"

#include "ui/editors/native_editor_view.h"
#include "ui/editors/plugin_editor_view.h"
#include "ui/editors/x11_windows.h"
#include "ui/windows/window_presenter.h"

#include <utility>

namespace orvane::ui {

namespace {

Qt::WindowFlags flagsOf(std::uint32_t styleMask) {
    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint;
    if ((styleMask & platform::NSWindowStyleMaskTitled) != 0)
        flags |= Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
    if ((styleMask & platform::NSWindowStyleMaskClosable) != 0) flags |= Qt::WindowCloseButtonHint;
    if ((styleMask & platform::NSWindowStyleMaskMiniaturizable) != 0) flags |= Qt::WindowMinimizeButtonHint;
    return flags;
}

/// Makes the plugin's own editor, or else a panel of its parameters.
std::unique_ptr<QWidget>
makeView(std::shared_ptr<platform::AUViewController> content, Qt::WindowFlags flags) {
    if (isOnX11())
        if (auto native = NativeEditorView::open(content, flags)) return native;
    auto panel = std::make_unique<PluginEditorView>(std::move(content));
    panel->setWindowFlags(flags);
    return panel;
}

class PluginEditorWindow final : public platform::NSWindowController {
  public:
    PluginEditorWindow(
        std::shared_ptr<platform::AUViewController> content, const std::string& title, std::uint32_t styleMask
    )
        : view(makeView(std::move(content), flagsOf(styleMask))) {
        view->setWindowTitle(QString::fromStdString(title));
        if (view->sizeHint().isValid()) view->resize(view->sizeHint());
        if ((styleMask & platform::NSWindowStyleMaskResizable) == 0) view->setFixedSize(view->size());
    }

    void showWindow() override {
        view->show();
        wasShown = true;
    }
    void makeKeyAndOrderFront() override { bringToFront(*view); }
    /// A minimised window is not hidden.
    [[nodiscard]] bool isClosed() const override { return wasShown && view->isHidden(); }

  private:
    std::unique_ptr<QWidget> view;
    bool wasShown = false;
};

} // namespace

std::unique_ptr<platform::NSWindowController> PluginEditorWindows::windowWithContentViewController(
    std::shared_ptr<platform::AUViewController> content, const std::string& title, std::uint32_t styleMask
) {
    return std::make_unique<PluginEditorWindow>(std::move(content), title, styleMask);
}

} // namespace orvane::ui
