#include "messaging/TLProcessMessage.h"

#include <gmock/gmock.h>

#include <sstream>

#include "doubles/TLVirtualMachineRecording.h"
#include "messaging/TLSubMessageFloat.h"
#include "messaging/TLSubMessageFloatPtr.h"
#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageIntegerPtr.h"
#include "messaging/TLSubMessageReal.h"
#include "messaging/TLSubMessageRealPtr.h"
#include "messaging/TLSubMessageString.h"
#include "platform/TLConsole.h"

namespace {

using testing::ElementsAre;

constexpr std::int32_t kPeer = 0x40007;

template <class T>
T* as(const TLProcessMessage& message, std::size_t position) {
  return dynamic_cast<T*>(message.subMessages.at(position).get());
}

class ProcessMessage : public testing::Test {
 protected:
  void SetUp() override { resetRecordedVirtualMachine(); }
  TLVirtualMachineRecording& vm = recordedVirtualMachine();
};

TEST_F(ProcessMessage, PacksCountThenTypeAndBodyOfEach) {
  TLProcessMessage message;
  message.tag = TL_MSG_TEXT;
  message.destination = kPeer;
  message.addString("héllo");
  message.addString("");
  message.addInteger(-3);
  message.subMessages.push_back(new TLSubMessageFloat(1.5F));
  message.subMessages.push_back(new TLSubMessageReal(-0.25));
  message.subMessages.push_back(new TLSubMessage);
  std::int32_t integers[] = {4, 5, 6};
  auto array = makeHandle<TLSubMessageIntegerPtr>();
  array->values = integers;
  array->count = 3;
  message.subMessages.push_back(array);
  ASSERT_TRUE(message.send());

  ASSERT_EQ(vm.sent.size(), 1U);
  EXPECT_EQ(vm.sent[0].tid, kPeer);
  EXPECT_EQ(vm.sent[0].tag, 7);
  const std::vector<TLWireItem> expected = {7,    7, 6,     "héllo", 7, 0, "", 1, -3, 2,
                                            1.5F, 3, -0.25, 0,       4, 3, 4,  5, 6};
  EXPECT_EQ(vm.sent[0].body.items(), expected);
}

TEST_F(ProcessMessage, GoesToNobodyBelowOneAndStopsAtTheFirstFailure) {
  TLProcessMessage message;
  for (const std::int32_t nobody : {0, -1, -31}) {
    message.destination = nobody;
    EXPECT_FALSE(message.send());
  }
  message.destination = kPeer;
  auto array = makeHandle<TLSubMessageRealPtr>();
  array->count = 2;  // and no values
  message.subMessages.push_back(array);
  EXPECT_FALSE(message.send());
  EXPECT_TRUE(vm.sent.empty());

  std::ostringstream told;
  const TLConsoleRedirect redirect(told);
  vm.sendBufferFails = true;
  EXPECT_FALSE(TLProcessMessage().send());
  EXPECT_EQ(told.str(), "cannot reset message buffer\n");
}

TEST_F(ProcessMessage, ReceivesWhatFitsSourceAndTag) {
  vm.arrives(kPeer, 4).integer(0);
  vm.arrives(kPeer + 1, 5).integer(-2);
  vm.arrives(kPeer, 7).integer(2).integer(7).counted("done").integer(3).real64(2.5);
  TLProcessMessage message;
  EXPECT_FALSE(message.receiveNoWait(kPeer, 8));
  ASSERT_TRUE(message.receiveNoWait(kPeer, 7));
  EXPECT_EQ(as<TLSubMessageString>(message, 0)->text, "done");
  EXPECT_EQ(as<TLSubMessageReal>(message, 1)->value, 2.5);
  ASSERT_TRUE(message.receive(kPeer + 1, -1));  // a count below 1 is no sub-message
  EXPECT_EQ(message.tag, 5);
  EXPECT_EQ(message.source, kPeer + 1);
  EXPECT_TRUE(message.subMessages.empty());
  ASSERT_TRUE(message.receiveNoWait(-1, -1));
  EXPECT_EQ(message.tag, 4);
  EXPECT_TRUE(vm.buffers.empty()) << "every handled message's buffer is freed";
}

TEST_F(ProcessMessage, ReadsOnlyTheFirstOfAnArrayAndCopiesAreIndependent) {
  vm.arrives(kPeer, 5).integer(1).integer(5).integer(3).real32(1).real32(2).real32(3);
  TLProcessMessage message;
  ASSERT_TRUE(message.receiveNoWait(-1, -1));
  TLProcessMessage copy;
  copy.addString("old");
  copy.assign(message);
  copy.assign(copy);
  as<TLSubMessageFloatPtr>(message, 0)->count = 7;
  message.subMessages.clear();
  ASSERT_EQ(copy.subMessages.size(), 1U);
  EXPECT_EQ(copy.source, kPeer);
  EXPECT_EQ(copy.tag, 5);
  EXPECT_EQ(as<TLSubMessageFloatPtr>(copy, 0)->count, 3);
  EXPECT_EQ(as<TLSubMessageFloatPtr>(copy, 0)->values[0], 1.0F);
  EXPECT_EQ(as<TLSubMessageFloatPtr>(copy, 0)->values[2], 0.0F);
}

TEST_F(ProcessMessage, RefusesContentsThatLie) {
  constexpr std::int32_t kHuge = 0x7fffffff;
  const std::pair<const char*, TLWireBuffer> cases[] = {
      {"nothing at all", TLWireBuffer()},
      {"count above the contents", TLWireBuffer().integer(kHuge).integer(1).integer(5)},
      {"unknown type", TLWireBuffer().integer(2).integer(1).integer(5).integer(11)},
      {"negative type", TLWireBuffer().integer(1).integer(-1)},
      {"huge string", TLWireBuffer().integer(1).integer(7).integer(kHuge).string("x")},
      {"negative string", TLWireBuffer().integer(1).integer(7).integer(-1).string("x")},
      {"string longer than told", TLWireBuffer().integer(1).integer(7).integer(1).string("xyz")},
      {"string beyond the end", TLWireBuffer().integer(1).integer(7).integer(3).integer(400)},
      {"huge array", TLWireBuffer().integer(1).integer(6).integer(kHuge).real64(1)},
      {"negative array", TLWireBuffer().integer(1).integer(4).integer(-4).integer(1)},
      {"empty array", TLWireBuffer().integer(1).integer(4).integer(0).integer(1)},
      {"half a real", TLWireBuffer().integer(1).integer(3).integer(0)},
  };
  for (const auto& [name, body] : cases) {
    vm.incoming.push_back({kPeer, 7, body});
    vm.arrives(kPeer, 7).integer(1).integer(1).integer(42);
    TLProcessMessage message;
    EXPECT_FALSE(message.receiveNoWait(-1, -1)) << name;
    ASSERT_TRUE(message.receiveNoWait(-1, -1)) << name;
    EXPECT_EQ(as<TLSubMessageInteger>(message, 0)->value, 42) << name;
  }
}

}  // namespace
