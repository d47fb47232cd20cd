#pragma once

/// Has the interpreter's event loop wait by one system call, in the thread that waits. Tcl's own
/// way hands every wait to a thread beside, at some forty microseconds even when nothing is there
/// to be handled, and the daemon lets the script handle events ("update") behind each line that it
/// tells.
///
/// Must be called before the first interpreter of the process is made; further calls do nothing.
void usePollNotifier();
