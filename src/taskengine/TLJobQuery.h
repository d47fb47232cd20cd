#pragma once

#include <cstdint>

#include "textio/RWCString.h"

/// What a queuing system says of one job.
enum class TLJobState { unknown, running, finished };

/// Asks the queuing system `kind` (1 SGE, 2 PBS, 3 LSF) on `host` for a job. Blocks for as long as
/// the command takes. Unknown when there is no answer to read, or nothing in it on the job: a
/// failed query is no failed job.
TLJobState queryJob(std::int32_t kind, std::int32_t job, const RWCString& host,
                    const RWCString& login);

/// @name Reading of each system's answer to the query.
/// @{
TLJobState sgeJobState(const RWCString& answer);
TLJobState pbsJobState(const RWCString& answer, std::int32_t job);
TLJobState lsfJobState(const RWCString& answer);
/// @}
