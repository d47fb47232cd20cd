#include "session/TCLInterp.h"

#include <tcl.h>

#include "session/TLPollNotifier.h"

TCLInterp::TCLInterp() {
  usePollNotifier();
  interp_ = Tcl_CreateInterp();
}

TCLInterp::~TCLInterp() {
  Tcl_DeleteInterp(interp_);
}
