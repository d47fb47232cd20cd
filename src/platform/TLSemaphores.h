#pragma once

#include <string>
#include <vector>

/// What came of a removal of semaphores.
struct TLSemaphoreRemoval {
  int removed = 0;                    ///< sets that are gone now
  std::vector<std::string> failures;  ///< one line for each set that had to stay, with the reason
};

/// Removes the System V semaphore sets of the process `id` (above 0), which need not run any more:
/// the set whose key is `id`, and every set on one of whose semaphores that process was the last to
/// operate. Only sets that belong to the effective user are removed; one with the key that belongs
/// to another user is a failure, others of that user aren't looked at. No set at all is no failure.
TLSemaphoreRemoval removeSemaphoresOf(int id);
