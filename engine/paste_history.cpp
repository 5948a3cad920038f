#include "engine/paste_history.h"

#include "plugins/insert_components.h"

#include <utility>

namespace orvane::engine {

void PasteHistory::paste(const plugins::CopiedPlugin& copied, const plugins::PluginSlotKey& key) {
    if (auto replaced = rack.captured(key)) {
        pastes.push_back({key, plugins::identityOf(copied.component), *std::move(replaced)});
        if (pastes.size() > mostUndos) pastes.pop_front();
    }
    rack.load(copied.component, key, copied.stateData);
    publish();
}

void PasteHistory::undo() {
    bool isDone = false;
    while (!isDone && !pastes.empty()) {
        const Paste last = std::move(pastes.back());
        pastes.pop_back();
        const auto now = rack.captured(last.key);
        isDone = now && now->component == last.pasted;
        if (isDone) rack.restore(last.key, last.replaced);
    }
    publish();
}

void PasteHistory::clear() {
    pastes.clear();
    publish();
}

void PasteHistory::publish() {
    state.canUndoPaste.set(!pastes.empty());
}

} // namespace orvane::engine
