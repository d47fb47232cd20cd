#pragma once

#include "textio/RWCString.h"

class TLSubTask;

/// How the task engine has a step started, fetched and removed. The launching layer, which stands
/// above the engine, provides the one implementation and registers it at start-up.
class TLLauncher {
 public:
  virtual ~TLLauncher() = default;

  /// @name Starts: 0 when the process was started, otherwise the code of the failure.
  /// @{
  virtual int startStep(TLSubTask& step) = 0;  ///< also -100: the copy to the host failed
  /// A step of the marine chain.
  virtual int startMarineStep(TLSubTask& step) = 0;
  /// The step "PROBES2QVK".
  virtual int startProbesTool(TLSubTask& step) = 0;
  /// @}

  /// Brings the results of a remote run back and removes its directory. 0 when a retrieval was
  /// under way already, else 1.
  virtual int retrieveResults(TLSubTask& step) = 0;
  /// The retrieval of an unstructured run alone. 1.
  virtual int retrieveHexa_(TLSubTask& step) = 0;
  /// Removes the remote directory of a step that didn't start.
  virtual void removeRemoteDir(TLSubTask& step) = 0;
  /// retrieveResults of the shape optimiser. 1.
  virtual int removeRemoteResults(TLSubTask& step) = 0;
  /// Stops one step: its status becomes Stopped, then its jobs are deleted from the queuing system
  /// or, without one, each of its children is killed. 1.
  virtual int stopSubTask(TLSubTask& step) = 0;
};

/// The registered launcher. Before one is registered, one that starts nothing (every start answers
/// -1).
TLLauncher& launcher();

/// Registers `launcher`, which the caller owns and which must outlive its use; null registers none.
void setLauncher(TLLauncher* launcher);
