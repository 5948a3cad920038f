#include "ui/strip/routing_menu.h"

#include "ui/controls/ordinal.h"

#include <algorithm>
#include <iterator>
#include <variant>

namespace orvane::ui {

namespace {

using Channel = std::optional<std::int64_t>;

void add(RoutingMenu& menu, const QString& label, Channel channel) {
    menu.labels.append(label);
    menu.channels.push_back(channel);
}

RoutingMenu beginWithNone() {
    RoutingMenu menu;
    add(menu, QStringLiteral("None"), std::nullopt);
    return menu;
}

void addSingle(RoutingMenu& menu, const QString& prefix, std::int64_t channel) {
    add(menu, prefix + ordinal(channel), channel);
}

void addPair(RoutingMenu& menu, std::int64_t left, std::int64_t right) {
    add(menu, QStringLiteral("%1-%2").arg(ordinal(left), ordinal(right)), left);
}

/// Selects the entry of the channel. Returns false if there is none.
bool choose(RoutingMenu& menu, const Channel& channel) {
    const auto found = std::ranges::find(menu.channels, channel);
    if (found == menu.channels.end()) return false;
    menu.current = static_cast<int>(std::distance(menu.channels.begin(), found));
    return true;
}

RoutingMenu singles(const QString& prefix, std::int64_t count, const Channel& current) {
    RoutingMenu menu = beginWithNone();
    for (std::int64_t channel = 0; channel < count; ++channel)
        addSingle(menu, prefix, channel);
    if (!choose(menu, current)) {
        addSingle(menu, prefix, *current);
        choose(menu, current);
    }
    return menu;
}

RoutingMenu pairs(std::int64_t count, std::int64_t left, std::int64_t right) {
    RoutingMenu menu = beginWithNone();
    for (std::int64_t first = 0; first + 1 < count; first += 2)
        addPair(menu, first, first + 1);
    // A left channel in the menu always has one after it.
    if (!choose(menu, left) || right != left + 1) {
        addPair(menu, left, right);
        menu.current = static_cast<int>(menu.labels.size()) - 1;
    }
    return menu;
}

/// A template, because the two kinds of routing have different stereo types.
template <class Stereo, class Routing>
RoutingMenu outputMenu(std::int64_t count, const Routing& routing) {
    if (const auto* const stereo = std::get_if<Stereo>(&routing))
        return pairs(count, stereo->left, stereo->right);
    const auto* const mono = std::get_if<session::output::Mono>(&routing);
    return singles(QStringLiteral("Out "), count, mono == nullptr ? Channel() : Channel(mono->channel));
}

} // namespace

RoutingMenu RoutingMenu::inputs(std::int64_t inputCount, const Channel& current) {
    return singles(QStringLiteral("In "), inputCount, current);
}

RoutingMenu RoutingMenu::outputs(std::int64_t outputCount, const session::OutputRouting& current) {
    return outputMenu<session::output::Stereo>(outputCount, current);
}

RoutingMenu RoutingMenu::outputs(std::int64_t outputCount, const session::MasterOutputRouting& current) {
    return outputMenu<session::master_output::Stereo>(outputCount, current);
}

} // namespace orvane::ui
