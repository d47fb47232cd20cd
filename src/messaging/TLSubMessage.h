#pragma once

#include <cstdint>

#include "textio/RefCounted.h"

/// One typed item of a process message. It writes itself to the send buffer and reads itself from
/// the active receive buffer, in the wire's encoding; its type code goes in front and is the
/// message's business. The base class is type 0, which has no body.
class TLSubMessage : public RefCounted {
 public:
  /// Reads the fields. False when the buffer holds too little or announces more than it can hold;
  /// the fields are then what could be read.
  virtual bool unpack() { return true; }
  /// Writes the fields; false when the virtual machine refuses, or there is nothing to write from.
  virtual bool pack() const { return true; }
  /// The type code of the wire.
  virtual std::int32_t type() const { return 0; }
};
