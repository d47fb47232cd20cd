#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "doubles/TLWireBuffer.h"

/// @file
/// The other side of the daemon in integration tests: this test process as a task of the virtual
/// machine, playing interface or tool by plain PVM calls and the wire format alone.

/// The sub-messages of a message under construction:
/// `PvmBody().text("4711").integer(262147)`.
class PvmBody {
 public:
  PvmBody& integer(std::int32_t value);
  PvmBody& real32(float value);
  PvmBody& real64(double value);
  PvmBody& text(std::string_view text);
  /// A sub-message of any type; its body is filled through the answer.
  TLWireBuffer& sub(std::int32_t type);
  /// The whole body: the number of sub-messages, then all of them.
  TLWireBuffer wire() const;

 private:
  std::int32_t count_ = 0;
  TLWireBuffer items_;
};

/// A message that arrived.
struct PvmMessage {
  std::int32_t source = 0;
  std::int32_t tag = 0;
  TLWireBuffer body;  ///< byte for byte, unread

  /// The values of the sub-messages, as long as these are of the types 1, 2, 3 and 7.
  std::vector<TLWireItem> values() const;
};

/// This process as a task. All operations may be used beside the project's own messages: both share
/// one enrolment.
class PvmPeer {
 public:
  /// Enrols this process (once) and answers its tid.
  static std::int32_t tid();

  /// Sends under `tag`; false when PVM refuses.
  static bool send(std::int32_t to, std::int32_t tag, const PvmBody& body = {});
  /// Sends contents of any kind, item for item.
  static bool sendRaw(std::int32_t to, std::int32_t tag, const TLWireBuffer& body);
  /// Waits for a message; -1 stands for any sender or tag. None when `seconds` have gone by.
  static std::optional<PvmMessage> receive(std::int32_t from = -1, std::int32_t tag = -1,
                                           double seconds = 30.0);

  /// Starts a program on this host; its tid, or PVM's code.
  static std::int32_t spawn(const std::string& program, const std::vector<std::string>& words = {});
  /// Adds hosts to the virtual machine, each as a host file has it; false when one didn't come.
  static bool addHosts(const std::vector<std::string>& lines);
  static bool alive(std::int32_t tid);
  static bool waitGone(std::int32_t tid, double seconds = 30.0);
  static void kill(std::int32_t tid);
  /// The process identifier of a task of this virtual machine, 0 when it isn't known.
  static int processOf(std::int32_t tid);
  /// All tasks of the virtual machine but this one.
  static std::vector<std::int32_t> others();
};
