#include "ui/mixer/presentation.h"

namespace orvane::ui {

void Presentation::choose(StripPresentation presentation) {
    choice.set(presentation);
    show(presentation);
}

void Presentation::toggle() {
    choose(current.get() == StripPresentation::setup ? StripPresentation::mix : StripPresentation::setup);
}

void Presentation::setSetupFits(bool fits) {
    if (!choice.get()) show(fits ? StripPresentation::setup : StripPresentation::mix);
}

void Presentation::show(StripPresentation presentation) {
    if (presentation != current.get()) current.set(presentation);
}

std::string_view nameOf(StripPresentation presentation) {
    return presentation == StripPresentation::setup ? "setup" : "mix";
}

std::optional<StripPresentation> presentationNamed(std::string_view name) {
    for (const StripPresentation presentation : {StripPresentation::setup, StripPresentation::mix})
        if (nameOf(presentation) == name) return presentation;
    return std::nullopt;
}

} // namespace orvane::ui
