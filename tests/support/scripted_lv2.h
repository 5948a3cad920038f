#pragma once

#include <atomic>

namespace orvane::test {

/// What a test and the scripted LV2 plugin, which is a library of its own, know of each other.
struct ScriptedLv2Probe {
    /// restore() does not return while this is set.
    std::atomic<bool> holdsRestore = false;
    std::atomic<bool> isRestoring = false;
    std::atomic<int> runsDuringRestore = 0;
    std::atomic<int> runsEnded = 0;
};

} // namespace orvane::test

/// Exported by the library.
extern "C" orvane::test::ScriptedLv2Probe* orvaneScriptedLv2Probe();
