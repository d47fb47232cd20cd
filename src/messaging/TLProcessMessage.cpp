#include "messaging/TLProcessMessage.h"

#include "messaging/TLSubMessageFloat.h"
#include "messaging/TLSubMessageFloatPtr.h"
#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageIntegerPtr.h"
#include "messaging/TLSubMessageReal.h"
#include "messaging/TLSubMessageRealPtr.h"
#include "messaging/TLSubMessageString.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"

namespace {

template <class T>
Handle<TLSubMessage> cloneAs(const TLSubMessage& other) {
  return Handle<TLSubMessage>(new T(static_cast<const T&>(other)));
}

bool packInteger(std::int32_t value) {
  return TL_virtual_machine_pack_int(&value, 1) != 0;
}

}  // namespace

void TLProcessMessage::assign(const TLProcessMessage& other) {
  if (this == &other) return;
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

Handle<TLSubMessage> TLProcessMessage::makeSubMessage(std::int32_t type) const {
  switch (type) {
    case 0:
      return new TLSubMessage;
    case 1:
      return new TLSubMessageInteger;
    case 2:
      return new TLSubMessageFloat;
    case 3:
      return new TLSubMessageReal;
    case 4:
      return new TLSubMessageIntegerPtr;
    case 5:
      return new TLSubMessageFloatPtr;
    case 6:
      return new TLSubMessageRealPtr;
    case 7:
      return new TLSubMessageString;
    default:
      return nullptr;
  }
}

Handle<TLSubMessage> TLProcessMessage::cloneSubMessage(const TLSubMessage& other) {
  switch (other.type()) {
    case 1:
      return cloneAs<TLSubMessageInteger>(other);
    case 2:
      return cloneAs<TLSubMessageFloat>(other);
    case 3:
      return cloneAs<TLSubMessageReal>(other);
    case 4:
      return cloneAs<TLSubMessageIntegerPtr>(other);
    case 5:
      return cloneAs<TLSubMessageFloatPtr>(other);
    case 6:
      return cloneAs<TLSubMessageRealPtr>(other);
    case 7:
      return cloneAs<TLSubMessageString>(other);
    default:
      return new TLSubMessage;
  }
}
