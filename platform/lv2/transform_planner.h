#pragma once

namespace orvane::platform::lv2 {

/// Makes the planner of the FFTW library thread-safe, in single and in double precision, if it is installed.
/// All plugins share that planner, from threads that know nothing of each other. Does so once in a process;
/// before the first plugin is instantiated. Any thread.
void makeTransformPlannersThreadSafe();

} // namespace orvane::platform::lv2
