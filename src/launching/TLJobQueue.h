#pragma once

#include <cstdint>

#include "textio/RWCString.h"

class TLSubTask;

/// The queuing systems of the hosts: submission of a step as a job, and the removal of its jobs.
class TLJobQueue {
 public:
  virtual ~TLJobQueue() = default;

  /// @name Answers of submit besides 0.
  /// @{
  static constexpr int kNothingToSubmit = -29;  ///< No such queuing system, or no script.
  /// The files did not get to the step's host.
  static constexpr int kCopyFailed = -100;
  /// @}

  /// Prepares the job's script, carries its files to the step's host and submits it. `precision` is
  /// "sp", "hp", "dp" or empty. 0 when it was submitted; `job` is its number, 0 when that could not
  /// be found out.
  virtual int submit(TLSubTask& step, const RWCString& precision, std::int32_t& job) = 0;

  /// Removes each job of the step, the last one first.
  virtual void deleteJobs(TLSubTask& step) = 0;
};

/// The one of the process: the real queuing systems (TLQueuingSystem.h) unless another is set.
TLJobQueue& jobQueue();

/// Puts another in its place, for tests. Not owned, must outlive its use; null for the real one.
void setJobQueue(TLJobQueue* queue);
