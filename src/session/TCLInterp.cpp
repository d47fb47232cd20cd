#include "session/TCLInterp.h"

#include <tcl.h>

TCLInterp::TCLInterp() : interp_(Tcl_CreateInterp()) {}

TCLInterp::~TCLInterp() {
  Tcl_DeleteInterp(interp_);
}
