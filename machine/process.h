#pragma once

namespace orvane::machine {

/// What both programs settle before anything else: a file that outgrows the shell's limit, and a reader of
/// the output that has gone, are errors like a full disk and not the end of the program; nothing that is
/// printed ends up in a file that is opened later, where the streams for it are closed; no file that the
/// program or a plugin makes can be written by everybody, whatever the shell allows. Main thread, before
/// others are there.
void prepareProcess();

/// Ends the process at once with that exit code if something has been abandoned to a thread that does not
/// come back, because nothing that this may still touch can be destroyed then; else returns. All output must
/// have been written. Main thread.
void endIfAbandoned(int exitCode);

} // namespace orvane::machine
