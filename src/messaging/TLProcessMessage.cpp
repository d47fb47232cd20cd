#include "messaging/TLProcessMessage.h"

#include <iterator>

#include "messaging/TLSubMessageFloat.h"
#include "messaging/TLSubMessageFloatPtr.h"
#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageIntegerPtr.h"
#include "messaging/TLSubMessageNewSteering.h"
#include "messaging/TLSubMessageReal.h"
#include "messaging/TLSubMessageRealPtr.h"
#include "messaging/TLSubMessageSteering.h"
#include "messaging/TLSubMessageSteeringStatus.h"
#include "messaging/TLSubMessageString.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"

namespace {

using Set = Handle<TLSteeringParameters>;

template <class T>
Handle<TLSubMessage> make(const Set& /*steering*/) {
  return new T;
}

template <class T>
Handle<TLSubMessage> makeOnSet(const Set& steering) {
  auto subMessage = makeHandle<T>();
  subMessage->parameters = steering;
  return subMessage;
}

template <class T>
Handle<TLSubMessage> clone(const TLSubMessage& other) {
  return new T(static_cast<const T&>(other));
}

// The set is shared; nothing else goes along.
template <class T>
Handle<TLSubMessage> cloneOnSet(const TLSubMessage& other) {
  return makeOnSet<T>(static_cast<const T&>(other).parameters);
}

// How each type is made and copied; the type code is the position.
struct Factory {
  Handle<TLSubMessage> (*make)(const Set& steering);
  Handle<TLSubMessage> (*clone)(const TLSubMessage& other);
};

template <class T>
constexpr Factory kPlain = {&make<T>, &clone<T>};

constexpr Factory kFactories[] = {
    kPlain<TLSubMessage>,
    kPlain<TLSubMessageInteger>,
    kPlain<TLSubMessageFloat>,
    kPlain<TLSubMessageReal>,
    kPlain<TLSubMessageIntegerPtr>,
    kPlain<TLSubMessageFloatPtr>,
    kPlain<TLSubMessageRealPtr>,
    kPlain<TLSubMessageString>,
    {&makeOnSet<TLSubMessageSteering>, &cloneOnSet<TLSubMessageSteering>},
    {&make<TLSubMessageNewSteering>, &cloneOnSet<TLSubMessageNewSteering>},
    {&make<TLSubMessageSteeringStatus>, &cloneOnSet<TLSubMessageSteeringStatus>},
};

const Factory* findFactory(std::int32_t type) {
  return type < 0 || type >= std::ssize(kFactories) ? nullptr : &kFactories[type];
}

bool packInteger(std::int32_t value) {
  return TL_virtual_machine_pack_int(&value, 1) != 0;
}

}  // namespace

void TLProcessMessage::assign(const TLProcessMessage& other) {
  if (this == &other) return;
  steering = other.steering;
  tag = other.tag;
  source = other.source;
  destination = other.destination;
  subMessages.clear();
  for (const auto& subMessage : other.subMessages) {
    subMessages.push_back(cloneSubMessage(*subMessage));
  }
}

bool TLProcessMessage::send() const {
  if (TL_virtual_machine_init_send_buffer() == 0) {
    console() << "cannot reset message buffer\n";
    return false;
  }
  if (destination < 1) return false;
  if (!packInteger(static_cast<std::int32_t>(subMessages.size()))) return false;
  for (const auto& subMessage : subMessages) {
    if (!packInteger(subMessage->type()) || !subMessage->pack()) return false;
  }
  return TL_virtual_machine_send(destination, tag) != 0;
}

bool TLProcessMessage::receiveNoWait(std::int32_t tid, std::int32_t wantedTag) {
  subMessages.clear();
  return take(TL_virtual_machine_receive_nowait(tid, wantedTag));
}

bool TLProcessMessage::receive(std::int32_t tid, std::int32_t wantedTag) {
  subMessages.clear();
  return take(TL_virtual_machine_receive(tid, wantedTag));
}

bool TLProcessMessage::take(std::int32_t buffer) {
  if (buffer == 0 || TL_virtual_machine_buffer_info(buffer, source, tag) == 0) return false;
  std::int32_t count = 0;
  if (TL_virtual_machine_unpack_int(&count) == 0) return false;
  for (std::int32_t i = 0; i < count; ++i) {
    std::int32_t type = 0;
    if (TL_virtual_machine_unpack_int(&type) == 0) return false;
    const Handle<TLSubMessage> subMessage = makeSubMessage(type);
    if (!subMessage || !subMessage->unpack()) return false;
    subMessages.push_back(subMessage);
  }
  TL_virtual_machine_free_buffer(buffer);
  return true;
}

void TLProcessMessage::addInteger(std::int32_t value) {
  subMessages.push_back(new TLSubMessageInteger(value));
}

void TLProcessMessage::addString(const RWCString& text) {
  subMessages.push_back(new TLSubMessageString(text));
}

void TLProcessMessage::addSteering(const Handle<TLSteeringParameters>& parameters,
                                   const Handle<TLSteeringParameters>& known) {
  auto subMessage = makeHandle<TLSubMessageSteering>();
  subMessage->parameters = parameters;
  subMessage->known = known;
  subMessages.push_back(subMessage);
}

void TLProcessMessage::addNewSteering(const Handle<TLSteeringParameters>& parameters) {
  subMessages.push_back(new TLSubMessageNewSteering(parameters));
}

Handle<TLSubMessage> TLProcessMessage::makeSubMessage(std::int32_t type) const {
  const Factory* factory = findFactory(type);
  return factory == nullptr ? nullptr : factory->make(steering);
}

Handle<TLSubMessage> TLProcessMessage::cloneSubMessage(const TLSubMessage& other) {
  const Factory* factory = findFactory(other.type());
  return factory == nullptr ? nullptr : factory->clone(other);
}
