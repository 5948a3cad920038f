#pragma once

namespace orvane::platform::lv2 {

/// Makes the planner of the FFTW library thread-safe, in single and double precision, if it is installed: all
/// plugins share the planner, each from its own thread. Does so once per process; must be called before the
/// first plugin is instantiated. Any thread.
void makeTransformPlannersThreadSafe();

} // namespace orvane::platform::lv2
