#include "session/TkSession.h"

#include <tcl.h>
#include <tk.h>

#include <array>
#include <cstdlib>
#include <string>
#include <utility>

#include "platform/TLConsole.h"
#include "session/TLQuietUpdate.h"
#include "session/TLToolVariables.h"

extern "C" {
int Tix_Init(Tcl_Interp* interp);
int Blt_Init(Tcl_Interp* interp);
}

bool gNoTk = false;
bool gNoEval = false;

namespace {

TkSession* gSession = nullptr;

/// `file readable` answers whether the file can be opened: a file that another program holds
/// locked exists, and yet can't be read.
constexpr const char* kFileReplacement =
    "rename ::file ::original_file_18112015\n"
    "proc ::file { cmd args } {\n"
    "set retval 0\n"
    "if { [string eq $cmd \"readable\"] } {\n"
    "set name [lindex $args 0]\n"
    "set rc [catch {open $name} fp]\n"
    "if { $rc == 0 } { close $fp }\n"
    "set retval [expr { $rc == 0 }]\n"
    "} else {\n"
    "set retval [uplevel 1 ::original_file_18112015 $cmd $args]\n"
    "}\n"
    "return $retval\n"
    "}\n";

/// Elements of the script's array "env", in order. `fromProcess` takes the value of the process
/// environment instead of the one worked out at start.
struct EnvElement {
  const char* name;
  bool fromProcess = false;
};
constexpr std::array kEnvElements = {EnvElement{"TCL_PATH"},
                                     EnvElement{"TCL_LIBRARY"},
                                     EnvElement{"TK_LIBRARY"},
                                     EnvElement{"TIX_LIBRARY"},
                                     EnvElement{"BLT_LIBRARY"},
                                     EnvElement{"SORVIT_PATH"},
                                     EnvElement{"BLT_LIBRARY", true},
                                     EnvElement{"TMP_DIR"},
                                     EnvElement{"VELSTRA_DIR"},
                                     EnvElement{"ZYV_EXE"},
                                     EnvElement{"GRA_EXE"},
                                     EnvElement{"VEL_EXE"},
                                     EnvElement{"QVK_EXE"},
                                     EnvElement{"TURNKEY_INP_PATH"},
                                     EnvElement{"PYTHONPATH"},
                                     EnvElement{"ONLINEHELPMIRE_DIR"},
                                     EnvElement{"ONLINEHELPZYV_DIR"},
                                     EnvElement{"ONLINEHELPHEXA_DIR"},
                                     EnvElement{"ONLINEHELPSORVIT_DIR"}};

constexpr std::array<std::pair<const char*, const char*>, 9> kApplicationElements = {{
    {"versionChecking", "1"},
    {"bramosh_only", "0"},
    {"bramosh_multiblock", "0"},
    {"is_hexa", "0"},
    {"parasolid_is_used", "0"},
    {"catiav5_is_used", "1"},
    {"multithread", "0"},
    {"debug", "0"},
    {"is_a_library", "0"},
}};

void printError(Tcl_Interp* interp, const char* title) {
  const char* info = Tcl_GetVar(interp, "errorInfo", TCL_GLOBAL_ONLY);
  console() << title << Tcl_GetStringResult(interp) << '\n'
            << (info == nullptr ? "" : info) << '\n'
            << std::flush;
}

struct Toolkit {
  int (*start)(Tcl_Interp*);
  const char* failure;
};
constexpr std::array<Toolkit, 3> kToolkits = {
    {{Tk_Init, " TK ERROR "}, {Tix_Init, " TIX ERROR "}, {Blt_Init, " BLT ERROR "}}};

}  // namespace

TkSession* TkSession::current() {
  return gSession;
}

TkSession::TkSession(int argc, char** argv) : interp_(std::make_unique<TCLInterp>()) {
  gSession = this;
  setArguments(argc, argv);
  setEnvironment();
  Tcl_FindExecutable(argc > 0 ? argv[0] : nullptr);
  if (Tcl_Init(interp()) != TCL_OK) printError(interp(), " TCL ERROR ");
  if (gNoTk) return;
  Tcl_Eval(interp(), kFileReplacement);
  startToolkits();
  useQuietUpdate(interp());
  setApplication();
}

TkSession::~TkSession() {
  if (gSession == this) gSession = nullptr;
  interp_.reset();
  Tcl_Finalize();
  actions_.clear();
}

void TkSession::setArguments(int argc, char** argv) {
  const int words = argc > 1 ? argc - 1 : 0;
  char* merged = Tcl_Merge(words, words > 0 ? argv + 1 : argv);
  Tcl_SetVar(interp(), "argv", merged, TCL_GLOBAL_ONLY);
  Tcl_Free(merged);
  Tcl_SetVar(interp(), "argc", std::to_string(words).c_str(), TCL_GLOBAL_ONLY);
  Tcl_SetVar(interp(), "argv0", argc > 0 ? argv[0] : "", TCL_GLOBAL_ONLY);
}

void TkSession::setEnvironment() {
  for (const EnvElement& element : kEnvElements) {
    RWCString value = toolVariable(element.name);
    if (element.fromProcess) {
      const char* text = std::getenv(element.name);
      value = text == nullptr ? "" : text;
    }
    Tcl_SetVar2(interp(), "env", element.name, value.c_str(), TCL_GLOBAL_ONLY);
  }
}

void TkSession::startToolkits() {
  for (const Toolkit& toolkit : kToolkits) {
    if (toolkit.start(interp()) == TCL_OK) continue;
    printError(interp(), toolkit.failure);
    std::exit(0);
  }
}

void TkSession::setApplication() {
  Tcl_SetVar(interp(), "tcl_rcFileName", "~/.talrc", TCL_GLOBAL_ONLY);
  for (const auto& [name, value] : kApplicationElements) {
    Tcl_SetVar2(interp(), "app", name, value, TCL_GLOBAL_ONLY);
  }
}

bool TkSession::hasVariable(const char* name, const char* element) const {
  return Tcl_GetVar2Ex(interp(), name, element, TCL_GLOBAL_ONLY) != nullptr;
}

void TkSession::setVariable(const char* name, const char* element, const RWCString& value,
                            bool append) const {
  const int flags = TCL_GLOBAL_ONLY | (append ? TCL_APPEND_VALUE : 0);
  Tcl_SetVar2(interp(), name, element, value.c_str(), flags);
}

std::int32_t TkSession::oneEvent() {
  if (Tk_GetNumMainWindows() < 1) {
    done_ = 1;
    return 0;
  }
  Tcl_DoOneEvent(0);
  return 1;
}

std::int32_t TkSession::run() {
  while (done_ == 0) oneEvent();
  return 1;
}

void TkSession::postAction(const Handle<TLAction>& action) {
  actions_.push_back(action);
}

void TkSession::runPostedActions() {
  while (!actions_.empty()) {
    const std::vector<Handle<TLAction>> posted = std::exchange(actions_, {});
    for (const Handle<TLAction>& action : posted) action->run();
  }
}

void exitThroughScript() {
  console().flush();
  Tcl_Exit(0);
  std::abort();  // not reached: Tcl_Exit ends the process
}
