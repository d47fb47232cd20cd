#include "doubles/TLVirtualMachineRecording.h"

#include <algorithm>
#include <tuple>

#include "session/TLScript.h"
#include "taskengine/TLProcessArguments.h"

namespace {

TLVirtualMachineRecording& vm() {
  return recordedVirtualMachine();
}

RWCString gLastSpawn = "ok";

TLWireBuffer* active() {
  const auto buffer = vm().buffers.find(vm().activeBuffer);
  return buffer == vm().buffers.end() ? nullptr : &buffer->second.body;
}

TLSpawnAnswer nextSpawnAnswer() {
  if (vm().spawnAnswers.empty()) return {0, vm().nextTid++, "ok"};
  TLSpawnAnswer answer = vm().spawnAnswers.front();
  vm().spawnAnswers.pop_front();
  return answer;
}

std::int32_t receive(std::int32_t tid, std::int32_t tag) {
  static std::int32_t lastBuffer = 0;
  auto& queue = vm().incoming;
  const auto message = std::find_if(queue.begin(), queue.end(), [&](const TLRecordedMessage& m) {
    return (tid == -1 || m.tid == tid) && (tag == -1 || m.tag == tag);
  });
  if (message == queue.end()) return 0;
  vm().buffers.erase(vm().activeBuffer);  // as PVM does with a buffer that nobody freed
  vm().activeBuffer = ++lastBuffer;
  vm().buffers[lastBuffer] = std::move(*message);
  queue.erase(message);
  return lastBuffer;
}

}  // namespace

TLWireBuffer& TLVirtualMachineRecording::arrives(std::int32_t tid, std::int32_t tag) {
  incoming.push_back({tid, tag, {}});
  return incoming.back().body;
}

TLVirtualMachineRecording& recordedVirtualMachine() {
  static TLVirtualMachineRecording recording;
  return recording;
}

void resetRecordedVirtualMachine() {
  recordedVirtualMachine() = {};
  gLastSpawn = "ok";
}

std::int32_t TL_virtual_machine_config(std::int32_t& hostCount, std::int32_t& archCount,
                                       std::vector<TLVirtualMachineHost>& hosts) {
  hosts = vm().configResult < 0 ? std::vector<TLVirtualMachineHost>() : vm().hosts;
  hostCount = static_cast<std::int32_t>(hosts.size());
  archCount = hosts.empty() ? 0 : 1;
  return vm().configResult;
}

const TLVirtualMachineHost* TL_virtual_machine_own_host() {
  return nullptr;
}

void TL_virtual_machine_use_companions(const RWCString& /*program*/) {}

TLSilentHost TL_virtual_machine_silence(std::int32_t tid) {
  const auto found = vm().silences.find(tid);
  return found == vm().silences.end() ? TLSilentHost() : found->second;
}

TLSilentHost TL_virtual_machine_obstacle(const RWCString& host) {
  const auto found = vm().obstacles.find(host);
  return found == vm().obstacles.end() ? TLSilentHost() : found->second;
}

std::int32_t TL_virtual_machine_spawn(const RWCString& host, const RWCString& executable,
                                      const TLProcessArguments& arguments, std::int32_t& tid) {
  const TLSpawnAnswer answer = nextSpawnAnswer();
  TLRecordedSpawn spawn{host, executable, {}, commandWords(arguments), answer.tid};
  for (const auto& argument : arguments.entries()) {
    spawn.arguments.emplace_back(argument->type(), argument->value());
  }
  vm().spawns.push_back(std::move(spawn));
  tid = answer.tid;
  gLastSpawn = answer.text;
  if (answer.result == 0) {
    evalScript("task_manager_receive_message start_status_ok");
    return 0;
  }
  evalScript("task_manager_receive_message \"TL_virtual_machine_errcode " + answer.text + "\"");
  evalScript("update");
  return answer.result;
}

const RWCString& TL_virtual_machine_last_spawn() {
  return gLastSpawn;
}

void TL_virtual_machine_watch_ends() {}

bool TL_virtual_machine_next_end(std::int32_t& tid, std::int32_t& waitStatus) {
  if (vm().ends.empty()) return false;
  std::tie(tid, waitStatus) = vm().ends.front();
  vm().ends.pop_front();
  return true;
}

std::int32_t TL_virtual_machine_status(std::int32_t tid) {
  vm().statusAsked.push_back(tid);
  const auto status = vm().statuses.find(tid);
  return status == vm().statuses.end() ? kVirtualMachineOk : status->second;
}

std::int32_t TL_virtual_machine_kill(std::int32_t tid) {
  if (tid > 0) vm().kills.push_back(tid);
  return 0;
}

std::int32_t TL_virtual_machine_parent() {
  return vm().parent;
}

std::int32_t TL_virtual_machine_mytid() {
  ++vm().mytidCalls;
  return vm().mytid;
}

void TL_virtual_machine_allow(bool /*allowed*/) {}

void TL_virtual_machine_catchout(std::FILE* stream) {
  vm().catchout = stream;
}

int TL_virtual_machine_init_send_buffer() {
  vm().sendBuffer = {};
  return vm().sendBufferFails ? 0 : 1;
}

int TL_virtual_machine_pack_int(const std::int32_t* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) vm().sendBuffer.integer(values[i]);
  return 1;
}

int TL_virtual_machine_pack_float(const float* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) vm().sendBuffer.real32(values[i]);
  return 1;
}

int TL_virtual_machine_pack_double(const double* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) vm().sendBuffer.real64(values[i]);
  return 1;
}

int TL_virtual_machine_pack_string(const RWCString& text) {
  vm().sendBuffer.string(text);
  return 1;
}

int TL_virtual_machine_send(std::int32_t tid, std::int32_t tag) {
  vm().sent.push_back({tid, tag, vm().sendBuffer});
  const auto fails = vm().sendFails.find(tid);
  return fails != vm().sendFails.end() && fails->second ? 0 : 1;
}

std::int32_t TL_virtual_machine_receive(std::int32_t tid, std::int32_t tag) {
  return receive(tid, tag);
}

std::int32_t TL_virtual_machine_receive_nowait(std::int32_t tid, std::int32_t tag) {
  return receive(tid, tag);
}

void TL_virtual_machine_await_sent() {}

bool TL_virtual_machine_lost() {
  return vm().lost;
}

int TL_virtual_machine_buffer_info(std::int32_t buffer, std::int32_t& source, std::int32_t& tag) {
  const auto found = vm().buffers.find(buffer);
  if (found == vm().buffers.end()) return 0;
  source = found->second.tid;
  tag = found->second.tag;
  return 1;
}

std::int32_t TL_virtual_machine_message_size() {
  return active() == nullptr ? 0 : static_cast<std::int32_t>(active()->bytes().size());
}

int TL_virtual_machine_free_buffer(std::int32_t buffer) {
  if (buffer == vm().activeBuffer) vm().activeBuffer = 0;
  return vm().buffers.erase(buffer) == 1 ? 1 : 0;
}

int TL_virtual_machine_unpack_int(std::int32_t* value) {
  return active() != nullptr && active()->takeInteger(*value) ? 1 : 0;
}

int TL_virtual_machine_unpack_double(double* value) {
  return active() != nullptr && active()->takeReal64(*value) ? 1 : 0;
}

int TL_virtual_machine_unpack_float(float* values, std::int32_t count) {
  if (active() == nullptr) return 0;
  for (std::int32_t i = 0; i < count; ++i) {
    if (!active()->takeReal32(values[i])) return 0;
  }
  return 1;
}

int TL_virtual_machine_unpack_message_buffer(RWCString& text, std::int32_t length) {
  RWCString taken;
  if (active() == nullptr || length < 0 || length > TL_virtual_machine_message_size()) return 0;
  if (!active()->takeString(taken)) return 0;
  if (taken.size() > static_cast<std::size_t>(length)) return 0;
  text = taken;
  return 1;
}

RWCString ownHostName() {
  return vm().ownHost;
}
