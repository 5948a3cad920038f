#include "ui/windows/mixer_root_view.h"

#include "ui/mixer/mixer_view.h"
#include "ui/windows/status_bar_view.h"

#include <QVBoxLayout>

#include <utility>

namespace orvane::ui {

MixerRootView::MixerRootView(
    std::size_t channelCount, const engine::Services& services, std::function<void()> onReconfigure
)
    : mixer(channelCount, services),
      mixerView(std::make_unique<MixerView>(mixer, std::move(onReconfigure))),
      statusBar(std::make_unique<StatusBarView>(mixer, mixerView->commands())) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(mixerView.get(), 1);
    layout->addWidget(statusBar.get());
}

MixerRootView::~MixerRootView() = default;

} // namespace orvane::ui
