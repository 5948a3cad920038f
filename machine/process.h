#pragma once

namespace orvane::machine {

/// Sets up the process, for both programs. A file that exceeds the shell's size limit, and output whose
/// reader is gone, become ordinary write errors. If standard streams are closed, their descriptors are
/// occupied, so that no file opened later receives the program's output. Files that the program or a plugin
/// creates are never writable by everyone, whatever the umask. Main thread, before other threads start.
void prepareProcess();

/// Ends the process at once with that exit code if anything was abandoned to a thread that does not return,
/// because the objects that thread may still use cannot be destroyed; returns otherwise. All output must have
/// been written. Main thread.
void endIfAbandoned(int exitCode);

} // namespace orvane::machine
