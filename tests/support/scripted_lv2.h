#pragma once

#include <lv2/ui/ui.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orvane::test {

/// What a test and the scripted plugin's editor know of each other. One thread.
struct ScriptedEditorProbe {
    // What the next one does.
    bool refuses = false;
    /// Asked for while it is opened, where it is not 0.
    int width = 0;
    bool wantsToClose = false;
    /// Where it throws.
    enum class Throw { nowhere, instantiate, extensionData, portEvent, idle, cleanup };
    Throw throwsIn = Throw::nowhere;

    // Of the one that was opened last.
    LV2UI_Write_Function write = nullptr;
    LV2UI_Controller controller = nullptr;
    const LV2UI_Resize* resize = nullptr;
    std::map<std::string, void*> features;
    std::uint32_t gainPort = 0;

    // Of all since the last reset.
    /// Control values by port, in the order in which they came.
    std::vector<std::pair<std::uint32_t, float>> values;
    /// Atoms of integers.
    std::vector<std::pair<std::uint32_t, std::int32_t>> messages;
    int idleCalls = 0;
    int openCount = 0;
    /// How many plugins were there when an editor was closed.
    std::vector<int> pluginsAtClose;
};

/// What a test and the scripted LV2 plugin, which is a library of its own, know of each other.
struct ScriptedLv2Probe {
    /// Where the plugin throws.
    enum class Throw { nowhere, instantiate, extensionData, run, work, workResponse, save, restore, cleanup };

    std::atomic<Throw> throwsIn = Throw::nowhere;
    /// save() and restore() do what they do and say that they failed.
    std::atomic<bool> deniesState = false;
    /// What run() puts into every sample, where it is not 0.
    std::atomic<float> plays = 0.0F;
    /// Schedules work, answers work, maps a URI and logs, on the calling thread, for the plugin made last;
    /// the number of calls that the host took.
    std::function<int()> callHost;
    /// instantiate() does not return while this is set.
    std::atomic<bool> holdsInstantiate = false;
    std::atomic<bool> isInstantiating = false;
    /// work() does not return while this is set.
    std::atomic<bool> holdsWork = false;
    std::atomic<bool> isWorking = false;
    std::atomic<int> worksDone = 0;
    /// work_response() schedules work.
    std::atomic<bool> goesOnWorking = false;
    /// restore() does not return while this is set.
    std::atomic<bool> holdsRestore = false;
    std::atomic<bool> isRestoring = false;
    std::atomic<int> runsDuringRestore = 0;
    std::atomic<int> runsEnded = 0;
    std::atomic<int> pluginCount = 0;
    /// Plugins cleaned up that were still active, or had never been.
    std::atomic<int> untimelyCleanups = 0;
    /// Calls of instantiate(), activate(), deactivate() and cleanup() that came within another one.
    std::atomic<int> overlappingSetUps = 0;
    ScriptedEditorProbe editor;
};

} // namespace orvane::test

/// Exported by the library.
extern "C" orvane::test::ScriptedLv2Probe* orvaneScriptedLv2Probe();
