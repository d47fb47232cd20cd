#include <gmock/gmock.h>

#include "doubles/TLVirtualMachineRecording.h"
#include "taskengine/TLProcessArguments.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CommandWords, FollowTheMarkersInTypeAndValue) {
  TLProcessArguments arguments;
  arguments.append("-steering", "undefined");
  arguments.append("none", "undefined");
  EXPECT_THAT(commandWords(arguments), IsEmpty());
  arguments.append("-batch", "none");
  arguments.append("-np", "4");
  arguments.append("none", "case.run");
  arguments.append("none", "none");
  arguments.append("", "prog");
  EXPECT_THAT(commandWords(arguments),
              ElementsAre("-batch", "-np", "4", "case.run", "none", "", "prog"));
}

TEST(HostIsWin32, UnlessTheTableSaysOtherwise) {
  resetRecordedVirtualMachine();
  auto& vm = recordedVirtualMachine();
  EXPECT_EQ(hostIsWin32("a"), 1);
  vm.hosts = {{1, "a", "LINUX64", 1000, 0}, {2, "b", "WIN32", 1000, 0}};
  EXPECT_EQ(hostIsWin32("a"), 0);
  EXPECT_EQ(hostIsWin32("b"), 1);
  EXPECT_EQ(hostIsWin32("A"), 1);
  vm.configResult = -14;
  EXPECT_EQ(hostIsWin32("a"), 1);
}

}  // namespace
