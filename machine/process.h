#pragma once

#include "platform/base/realtime_priority.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane::machine {

/// Sets up the process, for both programs. A file that exceeds the shell's size limit, and output whose
/// reader is gone, become ordinary write errors. If standard streams are closed, their descriptors are
/// occupied, so that no file opened later receives the program's output. Files that the program or a plugin
/// creates are never writable by everyone, whatever the umask. Main thread, before other threads start.
void prepareProcess();

/// Locks the program's present and future memory against being paged out, if the account may lock any amount.
/// Returns whether it is locked. Pages are not loaded before they are used. Main thread, before the program
/// uses much memory.
bool lockMemory();

/// What to do so that audio threads can have real-time priority, as one sentence; absent if they can, or if
/// `lender` grants it. A sound server may still have priority for its own threads. Any thread but the audio
/// ones.
std::optional<std::string> realtimeAdvice(platform::PriorityLender& lender);

/// Writes a sentence to standard error as one line "PROGRAM: ..."; a failure to write is ignored. Main
/// thread.
void printMessage(std::string_view program, std::string_view sentence);

/// Ends the process at once with that exit code if anything was abandoned to a thread that does not return,
/// because the objects that thread may still use cannot be destroyed; returns otherwise. All output must have
/// been written. Main thread.
void endIfAbandoned(int exitCode);

} // namespace orvane::machine
