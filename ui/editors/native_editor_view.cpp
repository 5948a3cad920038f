#include "ui/editors/native_editor_view.h"

#include "ui/editors/x11_windows.h"

#include <QHideEvent>

#include <chrono>
#include <utility>

namespace orvane::ui {

namespace {

constexpr std::chrono::milliseconds idleInterval(1000 / platform::NativeEditor::idleRate);

} // namespace

std::unique_ptr<NativeEditorView>
NativeEditorView::open(std::shared_ptr<platform::AUViewController> editor, Qt::WindowFlags flags) {
    std::unique_ptr<NativeEditorView> view(new NativeEditorView(std::move(editor), flags));
    return view->openEditor() ? std::move(view) : nullptr;
}

NativeEditorView::NativeEditorView(std::shared_ptr<platform::AUViewController> editor, Qt::WindowFlags flags)
    : QWidget(nullptr, flags), controller(std::move(editor)) {
    setAttribute(Qt::WA_NativeWindow);
    connect(&idling, &QTimer::timeout, this, [this] { idle(); });
}

bool NativeEditorView::openEditor() {
    // The editor has its own connection to the display server, so the requests of ours must be complete
    // first.
    winId();
    waitForX11();
    native = controller->unit().openNativeEditor(*this);
    if (!native) return false;
    if (wanted.isEmpty())
        if (const auto size = sizeOfX11Window(native->nativeWindow()))
            setContentSize(size->width(), size->height());
    if (native->hasFixedSize() && !wanted.isEmpty()) setFixedSize(wanted);
    idling.start(idleInterval);
    return true;
}

void NativeEditorView::setContentSize(int width, int height) {
    wanted = QSize(width, height) / devicePixelRatio();
    if (minimumSize() == maximumSize())
        setFixedSize(wanted);
    else
        resize(wanted);
}

void NativeEditorView::resizeEvent(QResizeEvent*) {
    if (native) resizeX11Window(native->nativeWindow(), size() * devicePixelRatio());
}

void NativeEditorView::hideEvent(QHideEvent* event) {
    // Spontaneous events come from the window system, which hides minimised windows.
    if (event->spontaneous()) return;
    idling.stop();
    native.reset();
}

void NativeEditorView::idle() {
    if (!native->idle()) close();
}

} // namespace orvane::ui
