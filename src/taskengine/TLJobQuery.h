#pragma once

#include <cstdint>

#include "textio/RWCString.h"

/// What a queuing system says of one job.
enum class TLJobState {
  unknown,  ///< there was no answer to read, or nothing in it on the job
  running,  ///< or still waiting in the queue
  finished
};

/// An answer of a queuing system about one job.
struct TLJobAnswer {
  TLJobState state = TLJobState::unknown;  ///< Unknown when the answer doesn't tell.
  RWCString said;  ///< the line that decided; else the first one of the answer, "nothing" for none
  RWCString word;  ///< the queuing system's own word for the job's state; empty when it says none
  bool odd = false;  ///< not the answer of a queue that knows the job: worth telling the user
};

/// Asks the queuing system `kind` (1 SGE, 2 PBS, 3 LSF) on `host` for a job. Blocks for as long as
/// the command takes. Unknown when there is no answer to read, or nothing in it on the job: a
/// failed query is no failed job.
TLJobAnswer queryJob(std::int32_t kind, std::int32_t job, const RWCString& host,
                     const RWCString& login);

/// @name Reading of each system's answer to the query.
/// @{

/// By the listing of "qstat -j".
TLJobAnswer sgeJobState(const RWCString& answer);
/// By the line of `job` in the listing of "qstat -J".
TLJobAnswer pbsJobState(const RWCString& answer, std::int32_t job);
/// By the listing of "bjobs".
TLJobAnswer lsfJobState(const RWCString& answer);
/// @}
