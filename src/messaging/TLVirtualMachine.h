#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

#include "textio/RWCString.h"

class TLProcessArguments;

/// @file
/// The virtual machine layer: the only place that calls PVM 3. One free function per operation;
/// PVM's constants, buffers and (with the exception of the liveness check) error codes stay below.
/// A truth value is 1 when PVM answered zero or more, else 0. A `tid` above 0 is a live task's
/// identifier, 0 is none, a negative one is a PVM status; -1 is the wildcard of a receive. Unit
/// tests link a recording double in place of this layer.

/// One host of the virtual machine.
struct TLVirtualMachineHost {
  std::int32_t tid = 0;    ///< of the host's daemon
  RWCString name;          ///< As the host file or the console named it.
  RWCString arch;          ///< "WIN32" for a Windows host
  std::int32_t speed = 0;  ///< relative speed
  std::int32_t dsig = 0;   ///< data signature
};

/// @name Answers of TL_virtual_machine_status, as PVM 3.4 (pvm3.h) defines them.
/// @{
constexpr std::int32_t kVirtualMachineOk = 0;          ///< The task lives.
constexpr std::int32_t kVirtualMachineNoTask = -31;    ///< There is no such task.
constexpr std::int32_t kVirtualMachineNoAnswer = -14;  ///< no virtual machine answers
/// @}

/// @name Answers of TL_virtual_machine_spawn that have a meaning of their own.
/// @{
constexpr std::int32_t kVirtualMachineNoHost = -6;  ///< The host isn't in the machine.
/// The program isn't there.
constexpr std::int32_t kVirtualMachineNoFile = -7;
/// @}

/// Whether this process may touch the virtual machine at all; true at first. While it is false the
/// host table, the parent, the own identifier and a task's status are answered as where no machine
/// runs, without a call to PVM, which would complain on the terminal or end a root's process.
void TL_virtual_machine_allow(bool allowed);

/// The host table and the number of hosts and architectures. Answers PVM's value; `hosts` is empty
/// when it is negative.
std::int32_t TL_virtual_machine_config(std::int32_t& hostCount, std::int32_t& archCount,
                                       std::vector<TLVirtualMachineHost>& hosts);

/// This host's entry of the table, without asking for it; null until a table has told it, and when
/// there is no virtual machine to ask.
const TLVirtualMachineHost* TL_virtual_machine_own_host();

/// A host that has left a question about it unanswered.
struct TLSilentHost {
  RWCString name;    ///< As in the host table; empty when there is no such host.
  double since = 0;  ///< when it was asked, in seconds since the epoch; 0: there is no such host

  /// True when there is such a host.
  explicit operator bool() const { return since != 0; }
  bool operator==(const TLSilentHost&) const = default;
};

/// @name Other hosts
/// PVM holds a caller who asks about a host that is cut off for some three minutes. With companions
/// such questions are asked by processes of their own, and this one goes on after a quarter of a
/// second at most: the answer is then the last one known, until PVM has answered. Without, each
/// question waits as PVM does.
/// @{

/// `program` is the companion's path. It is started by the first question about another host.
void TL_virtual_machine_use_companions(const RWCString& program);
/// The companion's path in this installation: beside the running program.
RWCString companionProgram();
/// The host of task `tid` when it doesn't answer. Never waits.
TLSilentHost TL_virtual_machine_silence(std::int32_t tid);
/// What a start on `host` would have to wait for: that host or, as long as PVM waits for it,
/// another one.
TLSilentHost TL_virtual_machine_obstacle(const RWCString& host);
/// @}

/// Starts one task of `executable` on `host`. 0 on success, `tid` then being the new task's;
/// otherwise the code that PVM filled in for the task. Tells the script of either.
std::int32_t TL_virtual_machine_spawn(const RWCString& host, const RWCString& executable,
                                      const TLProcessArguments& arguments, std::int32_t& tid);

/// The text of the last spawn: "ok", or why it failed.
const RWCString& TL_virtual_machine_last_spawn();

/// Has the virtual machine tell how each task ends that this process starts from now on. It does so
/// by a trace with no events asked of the tasks themselves, which notice nothing.
void TL_virtual_machine_watch_ends();
/// Takes the next end that was told: the task's `tid` and its status as the wait of a UNIX system
/// answers it. False when there is none.
bool TL_virtual_machine_next_end(std::int32_t& tid, std::int32_t& waitStatus);

/// The words that `arguments` stand for on a command line, in order: type and value, the value
/// "none" yielding only the type, the type "none" only the value, the value "undefined" nothing.
std::vector<RWCString> commandWords(const TLProcessArguments& arguments);

/// PVM's own answer on a task: 0 alive, kVirtualMachineNoTask gone, other negative codes trouble.
std::int32_t TL_virtual_machine_status(std::int32_t tid);
/// Ends a task; 0 without a call for a `tid` below 1.
std::int32_t TL_virtual_machine_kill(std::int32_t tid);
/// The task that spawned this one, 0 for none.
std::int32_t TL_virtual_machine_parent();
/// Own identifier, 0 when not enrolled; enrols the process on its first call.
std::int32_t TL_virtual_machine_mytid();
/// Sends what this task's children print to `stream`, which must stay open.
void TL_virtual_machine_catchout(std::FILE* stream);

/// @name The send buffer, one per process: initialise, pack in order, send.
/// @{

/// Empties it, for data in the encoding of all hosts (XDR). A truth value, as all below.
int TL_virtual_machine_init_send_buffer();
/// Appends `count` integers of 32 bits.
int TL_virtual_machine_pack_int(const std::int32_t* values, std::int32_t count);
/// Appends `count` IEEE reals of 32 bits.
int TL_virtual_machine_pack_float(const float* values, std::int32_t count);
/// Appends `count` IEEE reals of 64 bits.
int TL_virtual_machine_pack_double(const double* values, std::int32_t count);
/// Appends a text up to its first null character.
int TL_virtual_machine_pack_string(const RWCString& text);
/// Sends what was packed; that nobody receives it isn't noticed.
int TL_virtual_machine_send(std::int32_t tid, std::int32_t tag);
/// Waits until the virtual machine has taken what was sent. Happens by itself at the end of the
/// process; to be called by who ends the virtual machine before that.
void TL_virtual_machine_await_sent();
/// @}

/// @name Receiving. A buffer id is above 0; 0 means nothing there, or an error.
/// @{
std::int32_t TL_virtual_machine_receive(std::int32_t tid, std::int32_t tag);  ///< blocks
/// Answers at once.
std::int32_t TL_virtual_machine_receive_nowait(std::int32_t tid, std::int32_t tag);
/// True when the last receive without waiting found no virtual machine to ask.
bool TL_virtual_machine_lost();
/// Sender and tag of a received message. A truth value, as all unpacking.
int TL_virtual_machine_buffer_info(std::int32_t buffer, std::int32_t& source, std::int32_t& tag);
/// Bytes of the active receive buffer, the bound of every count and length that it may announce; 0
/// when there is none.
std::int32_t TL_virtual_machine_message_size();
/// Lets a received message go.
int TL_virtual_machine_free_buffer(std::int32_t buffer);
/// Takes one integer of 32 bits from the active receive buffer.
int TL_virtual_machine_unpack_int(std::int32_t* value);
/// Takes one real of 64 bits.
int TL_virtual_machine_unpack_double(double* value);
/// Takes `count` reals of 32 bits into `values`, which must have room for them.
int TL_virtual_machine_unpack_float(float* values, std::int32_t count);
/// A string of at most `length` bytes, terminator not counted.
int TL_virtual_machine_unpack_message_buffer(RWCString& text, std::int32_t length);
/// @}

/// Name of this host in the virtual machine; the machine's own name, cut at the first ".", when
/// there is none.
RWCString ownHostName();
/// True when the virtual machine's table holds `hostName`.
bool hostIsKnown(const RWCString& hostName);
/// 1 when the virtual machine's table says "WIN32" for `hostName` or doesn't know it, else 0.
std::int32_t hostIsWin32(const RWCString& hostName);
