#include "textio/Handle.h"

#include <gtest/gtest.h>

namespace {

struct Counted : RefCounted {
  explicit Counted(int* deaths) : deaths_(deaths) {}
  Counted(const Counted&) = default;
  ~Counted() override { ++*deaths_; }
  int* deaths_;
};

TEST(Handle, TheLastOneDeletes) {
  int deaths = 0;
  auto a = makeHandle<Counted>(&deaths);
  {
    Handle<Counted> b = a;
    b = b;  // NOLINT: to itself on purpose
    const Handle<Counted> moved = std::move(b);
    EXPECT_EQ(a->refCount(), 2);
    // A copied record has no holders yet.
    EXPECT_EQ(makeHandle<Counted>(*a)->refCount(), 1);
  }
  EXPECT_EQ(a->refCount(), 1);
  EXPECT_EQ(deaths, 1);
  a = nullptr;
  EXPECT_EQ(deaths, 2);
}

}  // namespace
