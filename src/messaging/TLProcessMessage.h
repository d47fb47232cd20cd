#pragma once

#include <cstdint>
#include <vector>

#include "messaging/TLMessageCodes.h"
#include "messaging/TLSteeringParameters.h"
#include "messaging/TLSubMessage.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"

/// What passes between the tools of a task: a code, which is the tag of the virtual machine, and an
/// ordered list of typed sub-messages. Built, sent and dropped within one handler.
///
/// The send buffer is one for the process: a message is packed in one run, so that it goes out
/// whole or not at all.
class TLProcessMessage : public RefCounted {
 public:
  TLProcessMessage() = default;
  /// A message whose received steering values land in `set`.
  explicit TLProcessMessage(const Handle<TLSteeringParameters>& set) : steering(set) {}
  /// As assign().
  TLProcessMessage(const TLProcessMessage& other) : RefCounted(other) { assign(other); }
  /// As assign().
  TLProcessMessage& operator=(const TLProcessMessage& other) {
    assign(other);
    return *this;
  }

  /// Copies the fields, and a clone of each sub-message.
  void assign(const TLProcessMessage& other);

  /// Sends to `destination` under `tag`. False when that is below 1 or any step fails; nothing is
  /// told of it but a send buffer that can't be reset.
  bool send() const;

  /// @name Receiving the next message from `tid` with `tag`, -1 standing for any.
  /// True with `source`, `tag` and the list filled. False when nothing is there, or when the
  /// message is refused: an unknown type, too little in it, counts that it can't hold. What could
  /// be read of a refused one stays in the list, its buffer stays the active one, which the next
  /// receive frees.
  /// @{

  /// Answers at once.
  bool receiveNoWait(std::int32_t tid, std::int32_t tag);
  bool receive(std::int32_t tid, std::int32_t tag);  ///< blocks
  /// @}

  /// @name Appending a new sub-message.
  /// @{

  /// One of 32 bits.
  void addInteger(std::int32_t value);
  /// A text of any length, without null characters.
  void addString(const RWCString& text);
  /// Values of `parameters` that are not in `known`, which may be none.
  void addSteering(const Handle<TLSteeringParameters>& parameters,
                   const Handle<TLSteeringParameters>& known);
  /// The settings of `parameters`.
  void addNewSteering(const Handle<TLSteeringParameters>& parameters);
  /// @}

  /// A new, empty sub-message of a type code; none for an unknown code.
  Handle<TLSubMessage> makeSubMessage(std::int32_t type) const;
  /// A copy of `other` with its own fields (arrays and steering sets are shared).
  static Handle<TLSubMessage> cloneSubMessage(const TLSubMessage& other);

  Handle<TLSteeringParameters> steering;          ///< where received values land; may be none
  std::vector<Handle<TLSubMessage>> subMessages;  ///< in the order of the wire
  std::int32_t tag = 1;                           ///< The message's code; below 1 it can't be sent.
  std::int32_t source = -1;                       ///< sender, filled on receive
  std::int32_t destination = -1;                  ///< Task identifier of the receiver; -1: none.

 private:
  bool take(std::int32_t buffer);
};
