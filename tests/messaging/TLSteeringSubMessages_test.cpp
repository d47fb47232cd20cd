#include <gmock/gmock.h>

#include <limits>

#include "doubles/TLVirtualMachineRecording.h"
#include "messaging/TLProcessMessage.h"
#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageNewSteering.h"
#include "messaging/TLSubMessageSteering.h"
#include "messaging/TLSubMessageSteeringStatus.h"

namespace {

using testing::ElementsAre;
using Items = std::vector<TLWireItem>;

constexpr std::int32_t kPeer = 0x40007;

Handle<TLSteeringParameter> add(TLSteeringParameters& set, const RWCString& name, std::int32_t type,
                                const std::vector<float>& x = {},
                                const std::vector<float>& y = {}) {
  const auto parameter = set.parameter(static_cast<int>(set.parameters.size()));
  parameter->name = name;
  parameter->setType(type);
  parameter->mergeValues(static_cast<std::int32_t>(x.size()), x.data(), y.data());
  return parameter;
}

class SteeringSubMessages : public testing::Test {
 protected:
  void SetUp() override { resetRecordedVirtualMachine(); }

  // What a sub-message leaves on the wire behind its type.
  Items packed(const TLSubMessage& subMessage) {
    TL_virtual_machine_init_send_buffer();
    EXPECT_TRUE(subMessage.pack());
    return vm.sendBuffer.items();
  }
  // The one sub-message of a received message with this body.
  template <class T>
  Handle<T> received(const TLWireBuffer& body, const Handle<TLSteeringParameters>& into = nullptr) {
    TLProcessMessage message(into);
    vm.incoming.push_back({kPeer, 13, body});
    EXPECT_TRUE(message.receiveNoWait(-1, -1));
    return Handle<T>(dynamic_cast<T*>(message.subMessages.at(0).get()));
  }

  TLVirtualMachineRecording& vm = recordedVirtualMachine();
};

TEST_F(SteeringSubMessages, ValuesGoAsAWholeForCurvesAndOnlyMissingOnesForResiduals) {
  auto message = makeHandle<TLSubMessageSteering>();
  EXPECT_FALSE(message->pack());
  message->parameters = makeHandle<TLSteeringParameters>();
  auto& set = *message->parameters;
  add(set, "rms", 0, {5, 6, 7}, {0.5F, 0.25F, 0.125F})->gridLevelJ = 2;
  add(set, "profile", 1, {0, 1}, {3, 4});
  add(set, "odd", 9, {1}, {1});
  add(set, "mass", 0);
  const auto head = [](TLWireBuffer& wire, const char* name, int type, int j) -> TLWireBuffer& {
    return wire.counted(name).integer(type).integer(0).integer(j).integer(0);
  };
  const auto tail = [&](TLWireBuffer& wire) {
    head(wire, "profile", 1, 0).integer(2).real32(0).real32(1).real32(3).real32(4);
    return head(wire, "mass", 0, 0).integer(0).items();
  };
  TLWireBuffer all;
  head(all.integer(4), "rms", 0, 2).integer(3).real32(5).real32(6).real32(7);
  all.real32(0.5F).real32(0.25F).real32(0.125F);
  EXPECT_EQ(packed(*message), tail(all));

  // The receiver's counts are last iterations, found by position and name together.
  message->known = makeHandle<TLSteeringParameters>();
  add(*message->known, "rms", 0)->setValueCount(6);
  TLWireBuffer rest;
  head(rest.integer(4), "rms", 0, 2).integer(1).real32(7).real32(0.125F);
  EXPECT_EQ(packed(*message), tail(rest));
  EXPECT_EQ(message->known->parameters.size(), 4U) << "positions beyond the end come to exist";

  message->known->parameters[0]->setValueCount(9);
  TLWireBuffer none;
  head(none.integer(4), "rms", 0, 2).integer(0);
  EXPECT_EQ(packed(*message), tail(none));
  message->known->parameters[0]->name = "other";
  EXPECT_EQ(packed(*message), packed([&] {
              TLSubMessageSteering unknown;
              unknown.parameters = message->parameters;
              return unknown;
            }()));
}

TEST_F(SteeringSubMessages, ValuesLandByNameInAGivenSetAndByPositionInANewOne) {
  TLWireBuffer body;
  body.integer(1).integer(8).integer(2);
  body.counted("unknown").integer(0).integer(0).integer(0).integer(0).integer(1).real32(1).real32(
      1);
  body.counted("rms").integer(0).integer(1).integer(2).integer(3).integer(3);
  body.real32(1).real32(2).real32(3);
  body.real32(0.5F).real32(std::numeric_limits<float>::quiet_NaN()).real32(0.25F);

  auto set = makeHandle<TLSteeringParameters>();
  add(*set, "rms", 1, {9}, {9});
  const auto given = received<TLSubMessageSteering>(body, set);
  EXPECT_EQ(given->parameters, set);
  ASSERT_EQ(set->parameters.size(), 1U);
  const TLSteeringParameter& rms = *set->parameters[0];
  EXPECT_EQ(rms.type, 0);
  EXPECT_EQ(rms.gridLevelK, 3);
  ASSERT_EQ(rms.valueCount(), 2);
  EXPECT_EQ(rms.xValues()[1], 3.0F);

  const auto fresh = received<TLSubMessageSteering>(body)->parameters;
  ASSERT_EQ(fresh->parameters.size(), 2U);
  EXPECT_EQ(fresh->parameters[0]->name, "unknown");
  EXPECT_EQ(fresh->parameters[1]->valueCount(), 2);
}

TEST_F(SteeringSubMessages, SettingsComeBackEqual) {
  auto set = makeHandle<TLSteeringParameters>();
  set->name = "/run/a.steering";
  const auto output = add(*set, "output iteration", 0, {2, 4, 6}, {0, 1, 0});
  output->userName = "Output";
  output->typeName = "iteration";
  output->typeId = 3;
  output->typeOpsel = 21;
  output->choiceEntry(1)->value = 2;
  output->realEntry(0)->value = 0.1;
  output->integerEntry(0)->value = -7;
  output->vectorEntry(0)->value = {1, 2, 3};
  output->stringEntry(0)->value = "";
  const TLSubMessageNewSteering sent(set);
  EXPECT_EQ(sent.firstOutputIteration, 4);
  EXPECT_EQ(sent.lastOutputIteration, 6);
  TLWireBuffer expected;
  expected.counted("/run/a.steering").integer(1);
  expected.counted("output iteration").counted("Output").counted("iteration");
  expected.integer(3).integer(21).integer(0);
  expected.integer(2).integer(0).integer(2).integer(1).real32(0.1F).integer(1).integer(-7);
  expected.integer(1).real32(1).real32(2).real32(3).integer(1).counted("");
  expected.integer(4).integer(6);
  EXPECT_EQ(packed(sent), expected.items());

  TLProcessMessage message;
  message.destination = kPeer;
  message.addNewSteering(set);
  ASSERT_TRUE(message.send());
  const auto back = received<TLSubMessageNewSteering>(vm.sent.back().body);
  EXPECT_EQ(packed(*back), expected.items());
  EXPECT_EQ(back->parameters->parameters[0]->valueCount(), 0) << "settings carry no values";
  const auto copy = TLProcessMessage::cloneSubMessage(*back);
  EXPECT_EQ(static_cast<TLSubMessageNewSteering&>(*copy).parameters, back->parameters);
  EXPECT_EQ(static_cast<TLSubMessageNewSteering&>(*copy).firstOutputIteration, -1);
  EXPECT_FALSE(TLSubMessageNewSteering(nullptr).pack());
}

TEST_F(SteeringSubMessages, StatusTellsTheLastIteration) {
  auto status = makeHandle<TLSubMessageSteeringStatus>();
  EXPECT_FALSE(status->pack());
  status->parameters = makeHandle<TLSteeringParameters>();
  add(*status->parameters, "rms", 0, {1, 2.75F}, {1, 1});
  add(*status->parameters, "mass", 0);
  const TLWireBuffer expected =
      TLWireBuffer().integer(2).counted("rms").integer(2).counted("mass").integer(0);
  EXPECT_EQ(packed(*status), expected.items());

  TLWireBuffer body;
  body.integer(1).integer(10).integer(1).counted("rms").integer(12);
  const auto got = received<TLSubMessageSteeringStatus>(body);
  EXPECT_EQ(got->parameters->parameters[0]->valueCount(), 12);
  EXPECT_EQ(got->parameters->parameters[0]->xValues(), nullptr);
  EXPECT_TRUE(got->unpack()) << "a set that is there already is not read again";
}

}  // namespace
