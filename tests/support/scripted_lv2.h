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

/// Shared by a test and the scripted plugin's editor. One thread.
struct ScriptedEditorProbe {
    // The behaviour of the next editor.
    bool refuses = false;
    /// Requested while opening, if it is not 0.
    int width = 0;
    bool wantsToClose = false;
    /// The call that throws.
    enum class Throw { nowhere, instantiate, extensionData, portEvent, idle, cleanup };
    Throw throwsIn = Throw::nowhere;

    // Set by the last editor that was opened.
    LV2UI_Write_Function write = nullptr;
    LV2UI_Controller controller = nullptr;
    const LV2UI_Resize* resize = nullptr;
    std::map<std::string, void*> features;
    std::uint32_t gainPort = 0;

    // Of all editors since the last reset.
    /// Control values by port, in order of arrival.
    std::vector<std::pair<std::uint32_t, float>> values;
    /// The integers in received atoms, by port.
    std::vector<std::pair<std::uint32_t, std::int32_t>> messages;
    int idleCalls = 0;
    int openCount = 0;
    /// The number of plugins each time an editor was closed.
    std::vector<int> pluginsAtClose;
};

/// Shared by a test and the scripted LV2 plugin, which is a separate library.
struct ScriptedLv2Probe {
    /// The call that throws.
    enum class Throw { nowhere, instantiate, extensionData, run, work, workResponse, save, restore, cleanup };

    std::atomic<Throw> throwsIn = Throw::nowhere;
    /// save() and restore() work, but report failure.
    std::atomic<bool> deniesState = false;
    /// Every output sample of run(), if it is not 0.
    std::atomic<float> plays = 0.0F;
    /// Schedules work, responds, maps a URI and logs, on the calling thread, for the newest plugin. Returns
    /// the number of calls that the host accepted.
    std::function<int()> callHost;
    /// instantiate() blocks while this is set.
    std::atomic<bool> holdsInstantiate = false;
    std::atomic<bool> isInstantiating = false;
    /// work() blocks while this is set.
    std::atomic<bool> holdsWork = false;
    std::atomic<bool> isWorking = false;
    std::atomic<int> worksDone = 0;
    /// work_response() schedules work.
    std::atomic<bool> goesOnWorking = false;
    /// restore() blocks while this is set.
    std::atomic<bool> holdsRestore = false;
    std::atomic<bool> isRestoring = false;
    std::atomic<int> runsDuringRestore = 0;
    std::atomic<int> runsEnded = 0;
    std::atomic<int> pluginCount = 0;
    /// Plugins cleaned up while active or before being activated.
    std::atomic<int> untimelyCleanups = 0;
    /// Calls of instantiate(), activate(), deactivate() and cleanup() that overlapped another one.
    std::atomic<int> overlappingSetUps = 0;
    ScriptedEditorProbe editor;
};

} // namespace orvane::test

/// Exported by the library.
extern "C" orvane::test::ScriptedLv2Probe* orvaneScriptedLv2Probe();
