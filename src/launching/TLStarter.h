#pragma once

#include <cstdint>

#include "launching/TLLaunchDraft.h"

class TLSubTask;

/// One way of starting the process of a step whose launch is composed. Each way stands in a file of
/// its own (TLStart*.cpp).
class TLStarter {
 public:
  virtual ~TLStarter() = default;

  /// Starts it. Answers
  ///   0     started; `child` is its identifier in the virtual machine, or the number of its job;
  ///   -100  the files of a job could not be carried to its host;
  ///   -29   there was nothing to submit;
  ///   any other code of the virtual machine that refused the start.
  /// Program, host and words are the draft's; `step` is for what goes beyond them.
  virtual int start(TLSubTask& step, const TLLaunchDraft& draft, const TLLaunchSite& site,
                    std::int32_t& child) = 0;
};

/// The starter of a way; null for TLStartWay::none. Lives as long as the process.
TLStarter* starterFor(TLStartWay way);

/// @name The ways.
/// @{
TLStarter& directStarter();       ///< by the virtual machine, on the step's host
TLStarter& mpiLauncherStarter();  ///< an MPI launcher, by the virtual machine, on this host
TLStarter& queuedStarter();       ///< as a job of a queuing system
TLStarter& localToolStarter();    ///< by the virtual machine, on this host
/// @}
