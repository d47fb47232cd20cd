#include "textio/Handle.h"

#include <gtest/gtest.h>

namespace {

struct Base : RefCounted {
  explicit Base(int* deaths) : deaths_(deaths) {}
  Base(const Base&) = default;
  ~Base() override { ++*deaths_; }
  int* deaths_;
};
struct Derived : Base {
  using Base::Base;
};

TEST(Handle, TheLastOneDeletes) {
  int deaths = 0;
  Handle<Base> a(new Derived(&deaths));
  EXPECT_EQ(a->refCount(), 1);
  {
    Handle<Base> b = a;
    EXPECT_EQ(a->refCount(), 2);
    b = b;  // NOLINT: to itself on purpose
    EXPECT_EQ(a->refCount(), 2);
    Handle<Base> moved = std::move(b);
    EXPECT_EQ(a->refCount(), 2);
  }
  EXPECT_EQ(a->refCount(), 1);
  a = Handle<Derived>(new Derived(&deaths));
  EXPECT_EQ(deaths, 1);
  a = nullptr;
  EXPECT_EQ(deaths, 2);
  EXPECT_FALSE(a);
}

TEST(Handle, ACopiedRecordHasNoHoldersYet) {
  int deaths = 0;
  const auto original = makeHandle<Base>(&deaths);
  const auto copy = makeHandle<Base>(*original);
  EXPECT_EQ(copy->refCount(), 1);
  EXPECT_EQ(original->refCount(), 1);
}

}  // namespace
