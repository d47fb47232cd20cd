#pragma once

struct Tcl_Interp;

/// Has the script's `update` ask the display for a confirmation only when the display was asked for
/// something since its last one. Tk's own way waits for a confirmation each time, at up to a tenth
/// of a millisecond and two changes of process, and the daemon lets the script handle events behind
/// each line that it tells. Events are handled, idle ones too, as ever.
///
/// To be called once per interpreter, behind the start of Tk.
void useQuietUpdate(Tcl_Interp* interp);
