#include "session/TLQuietUpdate.h"

#include <X11/Xlib.h>
#include <tcl.h>
#include <tk.h>

namespace {

/// True when something was asked of the window's display that it has not yet confirmed.
bool displayOwes(Tcl_Interp* interp) {
  Tk_Window window = Tk_MainWindow(interp);
  if (window == nullptr) return true;
  Display* display = Tk_Display(window);
  return NextRequest(display) != LastKnownRequestProcessed(display) + 1;
}

int quietUpdate(ClientData original, Tcl_Interp* interp, int count, Tcl_Obj* const words[]) {
  const auto* tk = static_cast<const Tcl_CmdInfo*>(original);
  if (count > 1) return tk->objProc(tk->objClientData, interp, count, words);
  while (Tcl_DoOneEvent(TCL_DONT_WAIT) != 0) {
    if (Tcl_Canceled(interp, TCL_LEAVE_ERR_MSG) == TCL_ERROR) return TCL_ERROR;
  }
  if (displayOwes(interp)) return tk->objProc(tk->objClientData, interp, count, words);
  Tcl_ResetResult(interp);
  return TCL_OK;
}

void forget(ClientData original) {
  delete static_cast<Tcl_CmdInfo*>(original);
}

}  // namespace

void useQuietUpdate(Tcl_Interp* interp) {
  Tcl_CmdInfo original = {};
  if (Tcl_GetCommandInfo(interp, "update", &original) == 0) return;
  Tcl_CreateObjCommand(interp, "update", quietUpdate, new Tcl_CmdInfo(original), forget);
}
