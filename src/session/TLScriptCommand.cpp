#include "session/TLScriptCommand.h"

#include <tcl.h>

#include <sstream>
#include <string>

#include "session/TclArgStream.h"
#include "session/TclResultStream.h"
#include "session/TkSession.h"

int runCommand(TLCommandHandler handler, Tcl_Interp* interp, int argc, const char** argv) {
  std::ostringstream text;
  TclArgStream arguments(argc - 1, argv + 1);
  TclResultStream result(&text);
  handler(arguments, result);
  // The interpreter's copy ends at the first zero, as every script result does.
  const std::string written = text.str();
  Tcl_SetResult(interp, const_cast<char*>(written.c_str()), TCL_VOLATILE);
  return result.code();
}

void registerCommand(const char* name, TLScriptProcedure procedure) {
  if (TkSession::current() == nullptr) return;
  Tcl_CreateCommand(TkSession::current()->interp(), name, procedure, nullptr, nullptr);
}
