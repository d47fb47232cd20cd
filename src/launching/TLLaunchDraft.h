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
  std::function<bool(const RWCString& path)> canRead;

  RWCString binDirectory() const { return suiteDirectory + separator + "bin"; }
};

/// What a launch takes from the run file of a flow solver.
struct TLRunFileFacts {
  static constexpr int kUnstructured = 2;

  bool good = false;  ///< it could be read
  int projectType = 0;
  RWCString solverPrecision;    ///< "single", "hybrid" or "double"
  bool hasComputation = false;  ///< false: what the first computation would tell stays as it was
  std::int32_t userSolverPrecision = 0;
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
  RWCString name;
  RWCString executable;
  RWCString hostName;
  RWCString remoteLogin;
  bool win32 = false;
  TLLoadBalancing loadBalancing;
  TLProcessArguments arguments;
  std::int32_t precision = 0;
  /// @}

  /// @name Values of the launch.
  /// @{
  bool displayWanted = true;
  bool use64 = true;
  bool needsTransfer = false;
  RWCString steeringFile;  ///< empty for none
  RWCString machinesFile = "unknown";
  RWCString solverPath;  ///< of the solver behind an MPI launcher; empty for none
  RWCString p4pgFile;
  RWCString batchFile;
  RWCString precisionWord = "single";
  bool unstructured = false;
  TLProcessArguments spawnArguments;  ///< what the process really gets
  /// @}

  bool parallel() const { return loadBalancing.parallel != 0; }
  bool queued() const { return loadBalancing.queuingSystemActivated != 0; }
  TLProgramChoice choice() const;
};

/// A file that a launch writes, with its text.
struct TLLaunchFile {
  RWCString path;
  RWCString text;
};
