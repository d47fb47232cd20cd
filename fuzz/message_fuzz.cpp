// A message of any contents arrives: it is received or refused, and what was received can be copied
// and sent on. The first byte of the input chooses whether values land in a set that is there.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <vector>

#include "doubles/TLVirtualMachineRecording.h"
#include "messaging/TLProcessMessage.h"
#include "messaging/TLSubMessageNewSteering.h"
#include "messaging/TLSubMessageSteering.h"
#include "messaging/TLSubMessageSteeringStatus.h"
#include "platform/TLConsole.h"

namespace {

constexpr std::int32_t kPeer = 0x40001;
constexpr std::size_t kPresentPoints = 3;

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

// What holds of every set, wherever its values came from: nothing but numbers, residuals in order,
// and no more points than bytes have arrived.
void check(const TLSteeringParameters& set, std::size_t bytes) {
  for (const auto& parameter : set.parameters) {
    const float* x = parameter->xValues();
    if (x == nullptr) continue;
    require(parameter->valueCount() >= 0 && parameter->valueCount() <= parameter->capacity());
    require(static_cast<std::size_t>(parameter->valueCount()) <= bytes + kPresentPoints);
    for (std::int32_t i = 0; i < parameter->valueCount(); ++i) {
      require(std::isfinite(parameter->yValues()[i]));
      if (parameter->type == TL_STEERING_RESIDUAL && i > 0) require(x[i - 1] < x[i]);
    }
  }
}

// Settings that arrived become the set, as they do in the daemon: histories go over by name.
Handle<TLSteeringParameters> setAfter(const TLProcessMessage& message,
                                      const Handle<TLSteeringParameters>& set) {
  for (const auto& subMessage : message.subMessages) {
    const auto* settings = dynamic_cast<const TLSubMessageNewSteering*>(subMessage.get());
    if (settings == nullptr || !settings->parameters) continue;
    for (const auto& present : set->parameters) {
      for (const auto& next : settings->parameters->parameters) {
        if (present->name == next->name || present->name == next->userName) {
          next->takeValues(*present);
        }
      }
    }
    return settings->parameters;
  }
  return set;
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

  auto set = presentSet();
  TLProcessMessage message = data[0] % 2 == 0 ? TLProcessMessage() : TLProcessMessage(set);
  if (message.receiveNoWait(-1, -1)) {
    TLProcessMessage copy = message;
    copy.destination = kPeer;
    copy.send();
    set = setAfter(copy, set);
    check(*set, size);
    for (const auto& subMessage : copy.subMessages) {
      const auto* values = dynamic_cast<const TLSubMessageSteering*>(subMessage.get());
      if (values != nullptr && values->parameters) check(*values->parameters, size);
    }
    answer(copy, set);
    set->clearAllValues();
    answer(copy, set);
  }
  TLProcessMessage next;
  require(next.receiveNoWait(-1, -1) && next.subMessages.size() == 1);
  return 0;
}
