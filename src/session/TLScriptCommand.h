#pragma once

#include "session/ArgStream.h"
#include "session/ResultStream.h"

struct Tcl_Interp;

/// The work of one script command: reads its arguments, writes its result.
using TLCommandHandler = void (*)(ArgStream& arguments, ResultStream& result);

/// The interpreter's form of a command.
using TLScriptProcedure = int (*)(void* clientData, Tcl_Interp* interp, int argc,
                                  const char** argv);

/// Runs `handler` on the words of a command, without the command's own, and makes what it wrote
/// the interpreter's result; answers the result code that it set.
int runCommand(TLCommandHandler handler, Tcl_Interp* interp, int argc, const char** argv);

/// Gives the session's interpreter a command. Nothing happens without a session.
void registerCommand(const char* name, TLScriptProcedure procedure);

/// Gives the session's interpreter the command `name`, which does what `handler` does.
template <TLCommandHandler handler>
void registerCommand(const char* name) {
  registerCommand(name, [](void*, Tcl_Interp* interp, int argc, const char** argv) {
    return runCommand(handler, interp, argc, argv);
  });
}
