#pragma once

namespace orvane::ui {

/// How strips and the master section look: with all their controls, or with those of a running show as large
/// as the window allows and all others as small signs.
enum class StripPresentation { setup, mix };

} // namespace orvane::ui
