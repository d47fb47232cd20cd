// Starts Tcl, Tk, Tix and BLT as the daemon does, tells its parent, ends.
#include <pvm3.h>
#include <tcl.h>
#include <tk.h>

#include <initializer_list>

extern "C" {
int Tix_Init(Tcl_Interp* interp);
int Blt_Init(Tcl_Interp* interp);
}

int main(int /*argc*/, char** argv) {
  const int parent = pvm_parent();
  Tcl_FindExecutable(argv[0]);
  Tcl_Interp* interp = Tcl_CreateInterp();
  for (int (*start)(Tcl_Interp*) : {Tcl_Init, Tk_Init, Tix_Init, Blt_Init}) {
    if (start(interp) != TCL_OK) return 1;
  }
  int count = 0;
  pvm_initsend(PvmDataDefault);
  pvm_pkint(&count, 1, 1);
  pvm_send(parent, 1);
  pvm_exit();
  return 0;
}
