#include "messaging/TLCountedString.h"

#include "messaging/TLVirtualMachine.h"

bool packCountedString(const RWCString& text) {
  const auto length = static_cast<std::int32_t>(text.size());
  return TL_virtual_machine_pack_int(&length, 1) != 0 && TL_virtual_machine_pack_string(text) != 0;
}

bool unpackCountedString(RWCString& text) {
  std::int32_t length = 0;
  return TL_virtual_machine_unpack_int(&length) != 0 &&
         TL_virtual_machine_unpack_message_buffer(text, length) != 0;
}
