#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "textio/RWCString.h"

/// How a step came to its end, as far as anybody told, and the sentence that tells it to people.
struct TLStepEnd {
  /// What ended it.
  enum class Kind {
    process,          ///< its process is gone; `waitStatus` says how, when that is known
    allWell,          ///< its status file says so
    lostSight,        ///< the virtual machine gave another answer than "gone"; its code is `detail`
    hostLost,         ///< its host is no longer in the virtual machine
    machineLost,      ///< no virtual machine answers any more
    statusFile,       ///< `detail`: what its status file says
    leftQueue,        ///< `detail`: what the queuing system says of the job
    jobFailed,        ///< the same, when that is no good end
    stopped,          ///< an interface asked for it
    jobDeleted,       ///< the same; `detail` is the number of its job
    stoppedInWindow,  ///< the user asked for it in the task's window
    stoppedEarly,     ///< the task was stopped before its turn came
    neverStarted,     ///< `detail`: why
    copyFailed,       ///< its files did not get to its host; `detail`: why
    disabled,         ///< by the task file
    behindFailure,    ///< disabled in this run; `detail` names the step that failed
    needless,         ///< there was nothing to do for it
  };

  Kind kind = Kind::process;  ///< As last noted.
  RWCString detail;           ///< What goes with the kind; empty for none.
  bool announced = false;     ///< its end message came
  bool crashed = false;       ///< it is one that announces its end, and didn't
  /// As the wait of a UNIX system answers it; none when nobody told. Of several processes that of
  /// the worst end.
  std::optional<std::int32_t> waitStatus;
  /// The kernel ended processes for want of memory while it ran.
  bool memoryWasShort = false;
  RWCString host;      ///< Of the step.
  RWCString errors;    ///< what it had reported by messages 8, joined
  RWCString lastLine;  ///< of its output
  RWCString log;       ///< where its output stands; empty for nowhere

  /// Takes in how one of the step's processes ended.
  void take(std::int32_t oneWaitStatus);

  /// One sentence without its end: host, cause, what is known beside it, the log. Empty when all
  /// went well.
  RWCString sentence() const;
};

/// The last line that one of the processes `tids` printed into the collected output `path`, without
/// the sign in front of it; empty when the last pages of the file hold none.
RWCString lastOutputLine(const RWCString& path, const std::vector<std::int32_t>& tids);
