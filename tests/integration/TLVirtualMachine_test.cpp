// The virtual machine layer and the messages over a real virtual machine.
#include "messaging/TLVirtualMachine.h"

#include <gmock/gmock.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <sstream>

#include "doubles/TLScriptRecording.h"
#include "integration/PvmPeer.h"
#include "integration/VirtualMachine.h"
#include "integration/Waiting.h"
#include "messaging/TLProcessMessage.h"
#include "messaging/TLSubMessageFloat.h"
#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageReal.h"
#include "messaging/TLSubMessageString.h"
#include "platform/TLConsole.h"
#include "taskengine/TLProcessArguments.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class RealVirtualMachine : public testing::Test {
 protected:
  void SetUp() override {
    machine = &VirtualMachine::shared();
    resetRecordedScript();
    self = TL_virtual_machine_mytid();
    ASSERT_GT(self, 0);
    while (PvmPeer::receive(-1, -1, 0)) {
    }
  }
  VirtualMachine* machine = nullptr;
  std::int32_t self = 0;
};

/// The file that takes what tasks print.
class Catchout {
 public:
  Catchout() { TL_virtual_machine_catchout(file_); }
  ~Catchout() {
    TL_virtual_machine_catchout(nullptr);
    std::fclose(file_);
  }
  /// What has come so far; lets the library read before.
  std::string text() const {
    TL_virtual_machine_receive_nowait(-1, 999999);
    std::fflush(file_);
    std::string text(10000, '\0');
    const auto size = pread(fileno(file_), text.data(), text.size(), 0);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return text;
  }

 private:
  std::FILE* file_ = std::tmpfile();
};

TEST_F(RealVirtualMachine, KnowsItself) {
  EXPECT_EQ(TL_virtual_machine_parent(), 0);
  EXPECT_EQ(ownHostName(), machine->hostName());
  EXPECT_EQ(hostIsWin32(machine->hostName()), 0);
  EXPECT_EQ(hostIsWin32("nowhere"), 1);
  EXPECT_EQ(TL_virtual_machine_status(self), kVirtualMachineOk);
  EXPECT_EQ(TL_virtual_machine_kill(0), 0);
  EXPECT_EQ(TL_virtual_machine_kill(-31), 0);
  std::int32_t hosts = 0;
  std::int32_t architectures = 0;
  std::vector<TLVirtualMachineHost> table;
  EXPECT_GE(TL_virtual_machine_config(hosts, architectures, table), 0);
  EXPECT_EQ(hosts, 1);
  EXPECT_EQ(table.at(0).arch, "LINUX64");
}

TEST_F(RealVirtualMachine, SpawnsWithArgumentsAndTellsTheScript) {
  const Catchout output;
  machine->addProgram("say", "/bin/echo");
  TLProcessArguments arguments;
  arguments.append("-flag", "none");
  arguments.append("-gone", "undefined");
  arguments.append("none", "two words");
  std::int32_t task = 0;
  ASSERT_EQ(TL_virtual_machine_spawn(machine->hostName(), "say", arguments, task), 0);
  EXPECT_GT(task, 0);
  EXPECT_EQ(TL_virtual_machine_last_spawn(), "ok");
  EXPECT_THAT(recordedScript().lines, ElementsAre("task_manager_receive_message start_status_ok"));
  EXPECT_TRUE(waitUntil([&] { return TL_virtual_machine_status(task) == kVirtualMachineNoTask; }));
  EXPECT_TRUE(
      waitUntil([&] { return output.text().find("-flag two words") != std::string::npos; }));
}

TEST_F(RealVirtualMachine, ATaskThatPrintsHoldsNothingUp) {
  const Catchout output;
  machine->addProgram("shell", "/bin/sh");
  TLProcessArguments arguments;
  arguments.append("-c", "i=0; while [ $i -lt 300 ]; do echo $i; sleep 0.001; i=$((i+1)); done");
  std::int32_t task = 0;
  ASSERT_EQ(TL_virtual_machine_spawn(machine->hostName(), "shell", arguments, task), 0);
  int reads = 0;
  EXPECT_TRUE(waitUntil([&] {
    ++reads;
    usleep(50000);
    return output.text().find("EOF") != std::string::npos;
  }));
  EXPECT_LT(reads, 150);
}

TEST_F(RealVirtualMachine, TellsWhyASpawnFailed) {
  struct Case {
    RWCString host, executable;
    std::int32_t result;
    RWCString text;
  };
  const Case cases[] = {
      {machine->hostName(), "/no/such/tool", -7, "/no/such/tool cannot be found"},
      {"nowhere", "/bin/true", -6, "nowhere: bad host name"},
  };
  for (const auto& [host, executable, result, text] : cases) {
    resetRecordedScript();
    std::int32_t task = 1;
    EXPECT_EQ(TL_virtual_machine_spawn(host, executable, TLProcessArguments(), task), result);
    EXPECT_EQ(task, result);
    EXPECT_EQ(TL_virtual_machine_last_spawn(), text);
    EXPECT_THAT(
        recordedScript().lines,
        ElementsAre("task_manager_receive_message \"TL_virtual_machine_errcode " + text + "\"",
                    "update"));
  }
}

TEST_F(RealVirtualMachine, MessagesTravelAsDocumented) {
  TLProcessMessage message;
  message.tag = 5;
  message.destination = self;
  message.addString("abc");
  message.addInteger(-2);
  message.subMessages.push_back(new TLSubMessageFloat(1.0F));
  message.subMessages.push_back(new TLSubMessageReal(-2.0));
  message.addString("");
  ASSERT_TRUE(message.send());
  const auto got = PvmPeer::receive(self, 5);
  ASSERT_TRUE(got);
  std::vector<std::uint8_t> bytes = got->body.bytes();
  ASSERT_GT(bytes.size(), 3U);
  bytes.resize(bytes.size() - 3);  // what fills up the last string may be anything
  const std::vector<std::uint8_t> expected = {
      0, 0, 0, 5,                                                        // sub-messages
      0, 0, 0, 7, 0,    0,    0,    3,    0, 0, 0, 4, 'a', 'b', 'c', 0,  // text
      0, 0, 0, 1, 0xff, 0xff, 0xff, 0xfe,                                // integer
      0, 0, 0, 2, 0x3f, 0x80, 0,    0,                                   // real of 32 bits
      0, 0, 0, 3, 0xc0, 0,    0,    0,    0, 0, 0, 0,                    // real of 64 bits
      0, 0, 0, 7, 0,    0,    0,    0,    0, 0, 0, 1, 0,                 // empty text
  };
  EXPECT_EQ(bytes, expected);

  ASSERT_TRUE(PvmPeer::send(self, 7, PvmBody().text("one\\two").integer(9)));
  TLProcessMessage received;
  ASSERT_TRUE(received.receive(self, 7));
  EXPECT_EQ(received.source, self);
  ASSERT_EQ(received.subMessages.size(), 2U);
  EXPECT_EQ(static_cast<TLSubMessageString&>(*received.subMessages[0]).text, "one\\two");
  EXPECT_EQ(static_cast<TLSubMessageInteger&>(*received.subMessages[1]).value, 9);
}

TEST_F(RealVirtualMachine, RefusedMessagesNeitherStopNorGrowIt) {
  std::ostringstream told;
  const TLConsoleRedirect redirect(told);
  const TLWireBuffer lies[] = {
      TLWireBuffer().integer(1).integer(7).integer(0x7fffffff).string("x"),
      TLWireBuffer().integer(1).integer(7).integer(4).integer(100000),
      TLWireBuffer().integer(1).integer(7).integer(2).string(std::string(3000, 'x')),
      TLWireBuffer().integer(3).integer(99),
      TLWireBuffer(),
  };
  constexpr int kRounds = 100;
  std::size_t atStart = 0;  // bytes on the heap
  for (int round = 0; round < kRounds; ++round) {
    if (round == kRounds / 4) atStart = mallinfo2().uordblks;
    for (const auto& lie : lies) {
      ASSERT_TRUE(PvmPeer::sendRaw(self, 7, lie));
      TLProcessMessage message;
      EXPECT_FALSE(message.receive(self, 7));
    }
  }
  EXPECT_LT(mallinfo2().uordblks, atStart + 65536);
  EXPECT_THAT(told.str(), HasSubstr("TL_virtual_machine_unpack_message_buffer error: -5\n"));
  TLProcessMessage message;
  ASSERT_TRUE(PvmPeer::send(self, 7, PvmBody().integer(1)));
  EXPECT_TRUE(message.receive(self, 7));
}

}  // namespace
