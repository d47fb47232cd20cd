#include "session/TLScript.h"

#include <tcl.h>

#include <string>

#include "platform/TLConsole.h"
#include "session/TkSession.h"

namespace {

/// Keeps the interpreter from being freed while something is evaluated in it.
class Preserved {
 public:
  explicit Preserved(Tcl_Interp* interp) : interp_(interp) { Tcl_Preserve(interp_); }
  ~Preserved() { Tcl_Release(interp_); }
  Preserved(const Preserved&) = delete;
  Preserved& operator=(const Preserved&) = delete;

 private:
  Tcl_Interp* interp_;
};

void reportFailure(Tcl_Interp* interp, int code) {
  const int line = Tcl_GetErrorLine(interp);
  const char* info = Tcl_GetVar(interp, "errorInfo", TCL_GLOBAL_ONLY);
  console() << " TCL ERROR " << line << ' ' << Tcl_GetStringResult(interp) << '\n'
            << (info == nullptr ? "" : info) << '\n'
            << std::flush;
  if (code != TCL_ERROR) return;
  const std::string place = "\n {\"while\" body line " + std::to_string(line) + "}";
  Tcl_AddErrorInfo(interp, place.c_str());
}

template <class Evaluate>
int evaluate(Evaluate&& work) {
  Tcl_Interp* interp = TkSession::current()->interp();
  const Preserved preserved(interp);
  const int code = work(interp);
  if (code != TCL_OK) reportFailure(interp, code);
  return code;
}

}  // namespace

int evalScript(const RWCString& text) {
  if (TkSession::current() == nullptr) return 0;
  if (gNoTk || gNoEval) return 1;
  return evaluate([&](Tcl_Interp* interp) { return Tcl_Eval(interp, text.c_str()); });
}

int sourceFile(const RWCString& path) {
  if (TkSession::current() == nullptr) return 0;
  if (gNoEval) return 1;
  return evaluate([&](Tcl_Interp* interp) { return Tcl_EvalFile(interp, path.c_str()); });
}

RWCString scriptResult() {
  if (TkSession::current() == nullptr) return {};
  return Tcl_GetStringResult(TkSession::current()->interp());
}

void showError(const RWCString& text) {
  if (TkSession::current() == nullptr) {
    console() << text << '\n' << std::flush;
    return;
  }
  evalScript("okMessage { " + text + " } { error }");
}
