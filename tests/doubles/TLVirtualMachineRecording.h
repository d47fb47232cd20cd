#pragma once

#include <cstdint>
#include <cstdio>
#include <deque>
#include <map>
#include <utility>
#include <vector>

#include "doubles/TLWireBuffer.h"
#include "messaging/TLVirtualMachine.h"

/// A message that went out or is to come in.
struct TLRecordedMessage {
  std::int32_t tid = 0;  ///< whom it goes to, or comes from
  std::int32_t tag = 0;
  TLWireBuffer body;
};

/// A task that was to be started.
struct TLRecordedSpawn {
  RWCString host;
  RWCString executable;
  std::vector<std::pair<RWCString, RWCString>> arguments;  ///< type and value, as given
  std::vector<RWCString> words;                            ///< what PVM would hand the program
  std::int32_t tid = 0;                                    ///< answered
};

/// Answer to one spawn: `result` 0 for success.
struct TLSpawnAnswer {
  std::int32_t result = 0;
  std::int32_t tid = 0;
  RWCString text = "ok";
};

/// The virtual machine of a unit test: keeps what it is asked to do and answers as scripted.
/// Linked (target tl_vm_recording) in place of the layer that calls PVM. Beside what the header of
/// the layer tells, a spawn evaluates the same script lines as the real one.
struct TLVirtualMachineRecording {
  /// @name Records, in the order of the calls.
  /// @{
  std::vector<TLRecordedSpawn> spawns;
  std::vector<std::int32_t> kills;  ///< without those of a `tid` below 1
  std::vector<TLRecordedMessage> sent;
  std::vector<std::int32_t> statusAsked;
  std::FILE* catchout = nullptr;
  std::int32_t mytidCalls = 0;
  /// @}

  /// @name Answers.
  /// @{
  std::deque<TLSpawnAnswer> spawnAnswers;  ///< taken one by one; then success with a new tid
  std::int32_t nextTid = 0x40001;
  std::map<std::int32_t, TLSilentHost> silences;  ///< by tid
  std::map<RWCString, TLSilentHost> obstacles;    ///< of starts, by host
  std::map<std::int32_t, std::int32_t> statuses;  ///< by tid; what isn't named is alive
  std::vector<TLVirtualMachineHost> hosts;
  std::int32_t configResult = 0;  ///< negative: no host table
  std::int32_t parent = 0;
  std::int32_t mytid = 0x40000;
  RWCString ownHost = "localhost";
  std::deque<std::pair<std::int32_t, std::int32_t>> ends;  ///< told ends: tid, status of the wait
  bool sendBufferFails = false;
  bool lost = false;
  std::map<std::int32_t, bool> sendFails;  ///< by tid
  std::deque<TLRecordedMessage> incoming;  ///< a receive takes the first that fits
  /// @}

  /// Buffers received and not yet freed, by id. The last received one is the active one.
  std::map<std::int32_t, TLRecordedMessage> buffers;
  std::int32_t activeBuffer = 0;
  TLWireBuffer sendBuffer;

  /// Puts a message from `tid` into the queue; the answer is its body, to be filled:
  /// `vm.arrives(child, 7).integer(1).integer(7).counted("text")`.
  TLWireBuffer& arrives(std::int32_t tid, std::int32_t tag);
};

/// The one virtual machine of the process.
TLVirtualMachineRecording& recordedVirtualMachine();
/// A fresh one; for the set-up of a test.
void resetRecordedVirtualMachine();
