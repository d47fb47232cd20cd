#pragma once

#include "launching/TLJobQueue.h"

/// The queuing systems SGE, PBS and LSF by their own commands, run on the step's host.
class TLQueuingSystem : public TLJobQueue {
 public:
  int submit(TLSubTask& step, const RWCString& precision, std::int32_t& job) override;
  void deleteJobs(TLSubTask& step) override;
};

struct TLLaunchDraft;
class TLProcessArguments;

/// The value of the first argument; empty without one.
RWCString firstValue(const TLProcessArguments& arguments);
/// The precision as a job's script is told it: "sp", "hp", "dp" or empty.
RWCString jobPrecision(const TLLaunchDraft& draft);
/// The command line that submits the script at `path` on a host of the given kind; empty for an
/// unknown queuing system.
RWCString submitCommand(const RWCString& host, std::int32_t kind, const RWCString& path,
                        bool win32);
