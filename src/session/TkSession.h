#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "session/TCLInterp.h"
#include "session/TLAction.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"

/// The one script session of a process: an interpreter with Tcl, Tk, Tix and BLT, and its event
/// loop. The free functions of TLScript.h and registerCommand reach the live session; without one
/// they do as they say.
class TkSession {
 public:
  /// Makes the interpreter, gives it `argv`, the variables of the tools (TLToolVariables.h) and
  /// the replacement of the command `file`, and starts Tk, Tix and BLT. One of these failing is
  /// told on standard output and ends the process with exit code 0.
  TkSession(int argc, char** argv);
  virtual ~TkSession();
  TkSession(const TkSession&) = delete;
  TkSession& operator=(const TkSession&) = delete;

  /// Handles events until no window is left; answers 1.
  virtual std::int32_t run();
  /// Keeps `action` until runPostedActions.
  virtual void postAction(const Handle<TLAction>& action);
  /// Runs what was posted, and what that posts, until nothing is left.
  virtual void runPostedActions();

  /// Waits for one event and handles it; answers 1. Without any window left: sets done, answers 0.
  std::int32_t oneEvent();

  /// @name The script's global variables: `name`, or element `element` of the array `name`.
  /// @{

  /// True when the variable, or the element asked for, is set.
  bool hasVariable(const char* name, const char* element = nullptr) const;
  /// Sets the variable, or appends to its text.
  void setVariable(const char* name, const char* element, const RWCString& value,
                   bool append = false) const;
  /// @}

  /// 1 once the last window has gone.
  std::int32_t done() const { return done_; }
  /// The interpreter; lives as long as the session.
  Tcl_Interp* interp() const { return interp_->get(); }

  /// The session of this process, null for none.
  static TkSession* current();

 private:
  void setArguments(int argc, char** argv);
  void setEnvironment();
  void startToolkits();
  void setApplication();

  std::vector<Handle<TLAction>> actions_;
  std::int32_t done_ = 0;
  std::unique_ptr<TCLInterp> interp_;
};

/// Switch of the process: true stops the making of a session before Tk is touched and makes
/// evalScript answer 1 without evaluating.
extern bool gNoTk;
/// Switch of the process: true makes evalScript and sourceFile answer 1 without evaluating.
extern bool gNoEval;

/// Evaluates a script file as evalScript does a text. 0 without a session.
int sourceFile(const RWCString& path);

/// Ends the process with exit code 0 by way of the interpreter's exit handlers.
[[noreturn]] void exitThroughScript();
