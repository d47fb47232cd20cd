#include "platform/TLSemaphores.h"

#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

// The caller defines this one.
union SemaphoreArgument {
  int value;
  semid_ds* status;
  unsigned short* values;
  seminfo* info;
};

bool lastOperatedBy(int set, unsigned long count, int process) {
  for (unsigned long i = 0; i < count; ++i) {
    if (semctl(set, static_cast<int>(i), GETPID) == process) return true;
  }
  return false;
}

/// Judges the set in the kernel's slot `slot`, which may be empty.
void treatSlot(int slot, int id, TLSemaphoreRemoval& result) {
  semid_ds status{};
  SemaphoreArgument argument{};
  argument.status = &status;
  const int set = semctl(slot, 0, SEM_STAT, argument);
  if (set < 0) return;  // empty, or not ours to read
  const bool hasKey = status.sem_perm.__key == id;
  if (!hasKey && !lastOperatedBy(set, status.sem_nsems, id)) return;
  const std::string name =
      "set " + std::to_string(set) + " with the key " + std::to_string(status.sem_perm.__key);
  if (status.sem_perm.uid != geteuid()) {
    if (!hasKey) return;
    result.failures.push_back(name + " belongs to user " + std::to_string(status.sem_perm.uid));
  } else if (semctl(set, 0, IPC_RMID) == 0) {
    ++result.removed;
  } else if (errno != EIDRM && errno != EINVAL) {  // not gone meanwhile
    result.failures.push_back(name + ": " + std::strerror(errno));
  }
}

}  // namespace

TLSemaphoreRemoval removeSemaphoresOf(int id) {
  TLSemaphoreRemoval result;
  // One that this user may not read hides from the walk through the slots.
  semid_ds status{};
  SemaphoreArgument argument{};
  argument.status = &status;
  const int withKey = semget(id, 0, 0);
  if (withKey >= 0 && semctl(withKey, 0, IPC_STAT, argument) < 0 && errno == EACCES) {
    result.failures.push_back("the set with the key " + std::to_string(id) +
                              " belongs to another user");
  }
  seminfo about{};
  argument.info = &about;
  const int lastSlot = semctl(0, 0, SEM_INFO, argument);
  if (lastSlot < 0) {
    result.failures.push_back(std::string("this host has no semaphores: ") + std::strerror(errno));
    return result;
  }
  for (int slot = 0; slot <= lastSlot; ++slot) treatSlot(slot, id, result);
  return result;
}
