#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/TLSemaphores.h"

namespace {

constexpr uid_t kOther = 4711;

/// A set of its own; gone with this object unless it is gone already.
class SemaphoreSet {
 public:
  explicit SemaphoreSet(key_t key) : id_(semget(key, 3, IPC_CREAT | IPC_EXCL | 0600)) {}
  ~SemaphoreSet() { semctl(id_, 0, IPC_RMID); }
  bool there() const { return semctl(id_, 0, GETVAL) >= 0; }
  void give(uid_t user) const {
    semid_ds status{};
    status.sem_perm.uid = user;
    status.sem_perm.mode = 0600;
    semctl(id_, 0, IPC_SET, &status);
  }
  /// Has a child process operate on the last semaphore; its identifier.
  int operate() const {
    const pid_t child = fork();
    if (child == 0) {
      sembuf up{2, 1, 0};
      _exit(semop(id_, &up, 1));
    }
    waitpid(child, nullptr, 0);
    return child;
  }

 private:
  int id_;
};

TEST(Semaphores, OfAProcessGoAndNothingElse) {
  const key_t key = 0x40000000 + getpid();  // above all process identifiers
  const SemaphoreSet keyed(key);
  const SemaphoreSet used(IPC_PRIVATE);
  const SemaphoreSet stranger(IPC_PRIVATE);
  stranger.operate();
  EXPECT_EQ(removeSemaphoresOf(key).removed, 1);
  EXPECT_FALSE(keyed.there());
  EXPECT_EQ(removeSemaphoresOf(used.operate()).removed, 1);
  EXPECT_FALSE(used.there());
  EXPECT_TRUE(stranger.there());
  const auto again = removeSemaphoresOf(key);
  EXPECT_EQ(again.removed, 0);
  EXPECT_TRUE(again.failures.empty());
}

TEST(Semaphores, OfOthersStay) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a set away";
  const key_t key = 0x40000000 + getpid();
  const SemaphoreSet keyed(key);
  keyed.give(kOther);
  const SemaphoreSet used(IPC_PRIVATE);
  used.give(kOther);
  EXPECT_TRUE(removeSemaphoresOf(used.operate()).failures.empty());
  const auto result = removeSemaphoresOf(key);
  ASSERT_EQ(result.failures.size(), 1U);
  EXPECT_NE(result.failures[0].find("belongs to user 4711"), std::string::npos);
  EXPECT_TRUE(keyed.there());
  EXPECT_TRUE(used.there());
}

}  // namespace
