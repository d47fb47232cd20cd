#include "integration/PvmPeer.h"

#include <pvm3.h>
#include <sys/time.h>

#include <bit>

#include "integration/VirtualMachine.h"
#include "integration/Waiting.h"

namespace {

timeval interval(double seconds) {
  const auto whole = static_cast<time_t>(seconds);
  return {whole, static_cast<suseconds_t>((seconds - static_cast<double>(whole)) * 1e6)};
}

struct Packer {
  bool operator()(std::int32_t value) const { return pvm_pkint(&value, 1, 1) >= 0; }
  bool operator()(float value) const { return pvm_pkfloat(&value, 1, 1) >= 0; }
  bool operator()(double value) const { return pvm_pkdouble(&value, 1, 1) >= 0; }
  bool operator()(std::string value) const { return pvm_pkstr(value.data()) >= 0; }
};

// Everything in PVM's encoding is made of units of four bytes, so that the contents can be taken
// out as integers whatever they are.
std::vector<std::uint8_t> unpackBytes(int size) {
  std::vector<std::uint8_t> bytes;
  for (int unit = 0; unit < size / 4; ++unit) {
    int value = 0;
    pvm_upkint(&value, 1, 1);
    for (int shift = 24; shift >= 0; shift -= 8) {
      bytes.push_back(static_cast<std::uint8_t>(static_cast<unsigned>(value) >> shift));
    }
  }
  return bytes;
}

std::vector<pvmtaskinfo> tasks() {
  pvmtaskinfo* table = nullptr;
  int count = 0;
  if (pvm_tasks(0, &count, &table) < 0) return {};
  return {table, table + count};
}

void append(TLWireBuffer& to, const TLWireBuffer& from) {
  for (const auto& item : from.items()) {
    if (const auto* integer = std::get_if<std::int32_t>(&item)) to.integer(*integer);
    if (const auto* real = std::get_if<float>(&item)) to.real32(*real);
    if (const auto* real = std::get_if<double>(&item)) to.real64(*real);
    if (const auto* text = std::get_if<std::string>(&item)) to.string(*text);
  }
}

bool takeValue(TLWireBuffer& body, std::int32_t type, std::vector<TLWireItem>& values) {
  std::int32_t integer = 0;
  float real32 = 0;
  double real64 = 0;
  std::string text;
  switch (type) {
    case 1:
      if (!body.takeInteger(integer)) return false;
      values.emplace_back(integer);
      return true;
    case 2:
      if (!body.takeReal32(real32)) return false;
      values.emplace_back(real32);
      return true;
    case 3:
      if (!body.takeReal64(real64)) return false;
      values.emplace_back(real64);
      return true;
    case 7:
      if (!body.takeInteger(integer) || !body.takeString(text)) return false;
      values.emplace_back(text);
      return true;
    default:
      return false;
  }
}

}  // namespace

PvmBody& PvmBody::integer(std::int32_t value) {
  sub(1).integer(value);
  return *this;
}

PvmBody& PvmBody::real32(float value) {
  sub(2).real32(value);
  return *this;
}

PvmBody& PvmBody::real64(double value) {
  sub(3).real64(value);
  return *this;
}

PvmBody& PvmBody::text(std::string_view text) {
  sub(7).counted(text);
  return *this;
}

TLWireBuffer& PvmBody::sub(std::int32_t type) {
  ++count_;
  return items_.integer(type);
}

TLWireBuffer PvmBody::wire() const {
  TLWireBuffer body;
  body.integer(count_);
  append(body, items_);
  return body;
}

std::vector<TLWireItem> PvmMessage::values() const {
  std::vector<TLWireItem> values;
  TLWireBuffer left = body;
  std::int32_t count = 0;
  left.takeInteger(count);
  for (std::int32_t i = 0; i < count; ++i) {
    std::int32_t type = 0;
    if (!left.takeInteger(type) || !takeValue(left, type, values)) break;
  }
  return values;
}

std::int32_t PvmPeer::tid() {
  return pvm_mytid();
}

bool PvmPeer::send(std::int32_t to, std::int32_t tag, const PvmBody& body) {
  return sendRaw(to, tag, body.wire());
}

bool PvmPeer::sendRaw(std::int32_t to, std::int32_t tag, const TLWireBuffer& body) {
  if (pvm_initsend(PvmDataDefault) < 0) return false;
  for (const auto& item : body.items()) {
    if (!std::visit(Packer(), item)) return false;
  }
  return pvm_send(to, tag) >= 0;
}

std::optional<PvmMessage> PvmPeer::receive(std::int32_t from, std::int32_t tag, double seconds) {
  timeval limit = interval(seconds);
  const int buffer = pvm_trecv(from, tag, &limit);
  if (buffer <= 0) return std::nullopt;
  PvmMessage message;
  int size = 0;
  pvm_bufinfo(buffer, &size, &message.tag, &message.source);
  message.body = TLWireBuffer(unpackBytes(size));
  pvm_freebuf(buffer);
  return message;
}

std::int32_t PvmPeer::spawn(const std::string& program, const std::vector<std::string>& words) {
  std::vector<std::string> copies = words;
  std::vector<char*> vector;
  for (auto& word : copies) vector.push_back(word.data());
  vector.push_back(nullptr);
  int task = 0;
  const int started =
      pvm_spawn(const_cast<char*>(program.c_str()), vector.data(), PvmTaskHost,
                const_cast<char*>(VirtualMachine::shared().hostName().c_str()), 1, &task);
  return started < 0 ? started : task;
}

bool PvmPeer::addHosts(const std::vector<std::string>& lines) {
  std::vector<std::string> copies = lines;
  std::vector<char*> hosts;
  for (auto& line : copies) hosts.push_back(line.data());
  std::vector<int> infos(hosts.size());
  const int count = static_cast<int>(hosts.size());
  return pvm_addhosts(hosts.data(), count, infos.data()) == count;
}

bool PvmPeer::alive(std::int32_t tid) {
  return pvm_pstat(tid) == PvmOk;
}

bool PvmPeer::waitGone(std::int32_t tid, double seconds) {
  return waitUntil([tid] { return !alive(tid); }, seconds);
}

void PvmPeer::kill(std::int32_t tid) {
  pvm_kill(tid);
}

int PvmPeer::processOf(std::int32_t tid) {
  for (const auto& task : tasks()) {
    if (task.ti_tid == tid) return task.ti_pid;
  }
  return 0;
}

std::vector<std::int32_t> PvmPeer::others() {
  std::vector<std::int32_t> found;
  for (const auto& task : tasks()) {
    if (task.ti_tid != pvm_mytid()) found.push_back(task.ti_tid);
  }
  return found;
}
