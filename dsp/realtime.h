#pragma once

/// Marks a function that runs on an audio thread: it neither allocates nor frees, takes no lock except the
/// short ones of the real-time state and the rings, and makes no system call. Such functions are `noexcept`.
/// Compilers that can check this do so; for other compilers, the tests run these functions under the
/// allocation guard.
#if defined(__clang__) && __has_cpp_attribute(clang::nonblocking)
#define ORVANE_REALTIME [[clang::nonblocking]]
#else
#define ORVANE_REALTIME
#endif
