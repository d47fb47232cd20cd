#pragma once

#include <functional>
#include <vector>

#include "balancing/TLLoadBalancing.h"
#include "launching/TLExecutableNames.h"
#include "taskengine/TLProcessArguments.h"
#include "textio/RWCString.h"

/// What the composition of a launch asks of the machine that it happens on.
struct TLLaunchSite {
  RWCString localHostName;   ///< this process's host in the virtual machine
  RWCString tid;             ///< of this process, decimal
  RWCString suiteDirectory;  ///< root of the installation, without a separator at its end
  char separator = '/';      ///< of local paths
  /// True for a file there.
  std::function<bool(const RWCString& path)> canRead;

  /// Where the suite's programs lie, without a separator at its end.
  RWCString binDirectory() const { return suiteDirectory + separator + "bin"; }
};

/// What a launch takes from the run file of a flow solver.
struct TLRunFileFacts {
  static constexpr int kUnstructured = 2;  ///< Value of `projectType`.

  bool good = false;            ///< it could be read
  int projectType = 0;          ///< Code of the project's type (TLProjectType).
  RWCString solverPrecision;    ///< "single", "hybrid" or "double"
  bool hasComputation = false;  ///< false: what the first computation would tell stays as it was
  std::int32_t userSolverPrecision = 0;  ///< Of the first computation: 0 single, 1 double.
};

/// How the process is started.
enum class TLStartWay {
  direct,       ///< by the virtual machine, on the step's host
  mpiLauncher,  ///< an MPI launcher, by the virtual machine, on this host
  queued,       ///< as a job of a queuing system of the step's host
  localTool,    ///< by the virtual machine, on this host, whatever the step's host
  none          ///< nothing is started: the step only becomes running or finished
};

/// A launch in the making: the step's own values, copied, and what the stages of the composition
/// make of them. The stages (launching/TLComposition.h) are pure: they change nothing but the
/// draft.
struct TLLaunchDraft {
  /// @name From the step. `executable`, `hostName`, `arguments`, `precision` and `loadBalancing`
  /// change on the way; what of it belongs to the step is told by the stages.
  /// @{
  RWCString name;                 ///< Kind of the step.
  RWCString executable;           ///< As the task file gives it, until nameProgram().
  RWCString hostName;             ///< Where the step runs.
  RWCString remoteLogin;          ///< Empty: the same user.
  bool win32 = false;             ///< Kind of that host.
  TLLoadBalancing loadBalancing;  ///< Decides about parallel runs and queues.
  TLProcessArguments arguments;   ///< Completed stage by stage.
  /// 0 single, 1 double; from the step, then from the run file.
  std::int32_t precision = 0;
  /// @}

  /// @name Values of the launch.
  /// @{
  bool displayWanted = true;           ///< False when an argument names a display already.
  bool use64 = true;                   ///< The 64-bit programs are installed (a Windows host).
  bool needsTransfer = false;          ///< Some file has to go to the host first.
  RWCString steeringFile;              ///< empty for none
  RWCString machinesFile = "unknown";  ///< "unknown": none.
  RWCString solverPath;                ///< of the solver behind an MPI launcher; empty for none
  RWCString p4pgFile;                  ///< Names hosts and processes for MPICH; empty for none.
  RWCString batchFile;  ///< Starts the process in place of a command line; empty for none.
  RWCString precisionWord = "single";  ///< "single", "hybrid" or "double", from the run file.
  bool unstructured = false;           ///< The run file's project is of that kind.
  TLProcessArguments spawnArguments;   ///< what the process really gets
  /// @}

  /// True for a parallel run, however many processes it has.
  bool parallel() const { return loadBalancing.parallel != 0; }
  /// True when a queuing system starts the process.
  bool queued() const { return loadBalancing.queuingSystemActivated != 0; }
  /// What the name of the program depends on, as the draft stands now.
  TLProgramChoice choice() const;
};

/// A file that a launch writes, with its text.
struct TLLaunchFile {
  RWCString path;  ///< Where it is written.
  RWCString text;  ///< All of it.
};
