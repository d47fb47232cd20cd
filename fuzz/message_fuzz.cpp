// A message of any contents arrives: it is received or refused, and what was received can be copied
// and sent on. The first byte of the input chooses whether values land in a set that is there.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <vector>

#include "doubles/TLVirtualMachineRecording.h"
#include "messaging/TLProcessMessage.h"
#include "messaging/TLSubMessageSteeringStatus.h"
#include "platform/TLConsole.h"

namespace {

constexpr std::int32_t kPeer = 0x40001;

Handle<TLSteeringParameters> presentSet() {
  auto set = makeHandle<TLSteeringParameters>();
  for (const char* name : {"rms", "a", "", "output iteration"}) {
    const float x[] = {1, 2, 3};
    const auto parameter = set->parameter(static_cast<int>(set->parameters.size()));
    parameter->name = name;
    parameter->mergeValues(3, x, x);
  }
  return set;
}

void require(bool holds) {
  if (!holds) std::abort();
}

// Answers a poll that tells what the sender holds, as the daemon does.
void answer(const TLProcessMessage& message, const Handle<TLSteeringParameters>& set) {
  for (const auto& subMessage : message.subMessages) {
    const auto* status = dynamic_cast<const TLSubMessageSteeringStatus*>(subMessage.get());
    if (status == nullptr) continue;
    TLProcessMessage reply;
    reply.destination = kPeer;
    reply.addString(set->name);
    reply.addSteering(set, status->parameters);
    require(reply.send());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static std::ostream nowhere(nullptr);
  const TLConsoleRedirect redirect(nowhere);
  resetRecordedVirtualMachine();
  auto& vm = recordedVirtualMachine();
  vm.incoming.push_back(
      {kPeer, 13, TLWireBuffer(std::vector<std::uint8_t>(data + 1, data + size))});
  vm.arrives(kPeer, 7).integer(1).integer(7).counted("still here");

  const auto set = presentSet();
  TLProcessMessage message = data[0] % 2 == 0 ? TLProcessMessage() : TLProcessMessage(set);
  if (message.receiveNoWait(-1, -1)) {
    TLProcessMessage copy = message;
    copy.destination = kPeer;
    copy.send();
    answer(copy, set);
  }
  TLProcessMessage next;
  require(next.receiveNoWait(-1, -1) && next.subMessages.size() == 1);
  return 0;
}
