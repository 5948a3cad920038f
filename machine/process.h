#pragma once

namespace orvane::machine {

/// What both programs settle before anything else: a file that outgrows the shell's limit, and a reader of
/// the output that has gone, are errors like a full disk and not the end of the program; nothing that is
/// printed ends up in a file that is opened later, where the streams for it are closed; no file that the
/// program or a plugin makes can be written by everybody, whatever the shell allows. Main thread, before
/// others are there.
void prepareProcess();

} // namespace orvane::machine
