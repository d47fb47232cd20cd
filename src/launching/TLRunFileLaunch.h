#pragma once

#include "launching/TLLaunchDraft.h"
#include "textio/RWCString.h"

class TLSubTask;

/// How the solver's processes are told to it in the run file.
struct TLRunFileDistribution {
  std::int32_t taskCount = 0;      ///< NTASK
  std::int32_t communication = 0;  ///< ICOMP
  bool balance = false;            ///< the blocks are distributed anew first
  bool processes = false;          ///< each block gets its process number
};

/// `parts` is the number of parts of the solver's own partition, `blocks` that of the project.
TLRunFileDistribution distributionOf(const TLLoadBalancing& loadBalancing, std::int32_t parts,
                                     std::int32_t blocks);

/// Reads the run file of a flow solver, adapts the draft to it and writes it back with the
/// distribution, the memory sizes and the steering values of the step. A run file that can't be
/// read is told to the script and replaced by one of an empty project; its bytes are kept beside it
/// as "<name>.unreadable" first.
void launchWithRunFile(TLSubTask& step, TLLaunchDraft& draft, const TLLaunchSite& site);
