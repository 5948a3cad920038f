#pragma once

namespace orvane::platform {

/// Puts the calling thread before all ordinary ones, at the priority that audio threads want or else the
/// highest one that its user may have; returns that priority, 0 where there is none to be had. For an audio
/// thread's beginning.
int takeRealtimePriority() noexcept;

/// The priority that an audio thread would get now. Any thread but the audio ones.
int obtainableRealtimePriority();

} // namespace orvane::platform
