#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"

namespace {

/// Exit code of `body` run in a child process.
template <class Body>
int inChild(Body body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  waitpid(child, &status, 0);
  return WEXITSTATUS(status);
}

TEST(LockFile, IsEmptyExcludesOthersAndGoes) {
  const TTempDir dir;
  const std::string path = dir.file("lockStatus");
  const auto form = makePosixForm();
  auto lock = form->acquireLock(path);
  ASSERT_TRUE(lock);
  EXPECT_EQ(std::filesystem::file_size(path), 0U);
  EXPECT_FALSE(form->acquireLock(path));
  EXPECT_EQ(inChild([&] { return form->acquireLock(path) ? 1 : 0; }), 0);
  // The failed tries of this process must not have dropped either of the locks.
  EXPECT_EQ(inChild([&] {
              const int file = open(path.c_str(), O_RDWR);
              struct flock record {};
              record.l_type = F_WRLCK;
              const bool locked = flock(file, LOCK_EX | LOCK_NB) == 0;
              return locked || fcntl(file, F_SETLK, &record) == 0 ? 1 : 0;
            }),
            0);
  lock.reset();
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_TRUE(form->acquireLock(path));
  EXPECT_FALSE(form->acquireLock(dir.file("none/lockStatus")));
}

TEST(LockFile, OfADeadProcessIsTakenOver) {
  const TTempDir dir;
  const std::string path = dir.file("lockStatus");
  const auto form = makePosixForm();
  // Dies with the lock held: the file stays.
  inChild([&] {
    form->acquireLock(path).release();
    return 0;
  });
  ASSERT_TRUE(std::filesystem::exists(path));
  auto lock = form->acquireLock(path);
  EXPECT_TRUE(lock);
  lock.reset();
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
