#include "messaging/TLVirtualMachine.h"

#include <poll.h>
#include <pvm3.h>
#include <pvmtev.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <thread>
#include <utility>

#include "messaging/TLOtherHosts.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "session/TLScript.h"
#include "taskengine/TLProcessArguments.h"

static_assert(kVirtualMachineOk == PvmOk && kVirtualMachineNoTask == PvmNoTask &&
              kVirtualMachineNoAnswer == PvmSysErr && kVirtualMachineNoHost == PvmNoHost &&
              kVirtualMachineNoFile == PvmNoFile);

namespace {

RWCString gLastSpawn = "ok";
bool gAllowed = true;
bool gLost = false;
// This host as the table told it first. A host keeps its name and kind for as long as a process of
// it is enrolled.
TLVirtualMachineHost gOwnHost;

TLOtherHosts& otherHosts() {
  static TLOtherHosts hosts;
  return hosts;
}

int truth(int code) {
  return code >= 0 ? 1 : 0;
}

// PVM takes its names as char*, but only reads them.
char* mutableText(const RWCString& text) {
  return const_cast<char*>(text.c_str());
}

// The argument vector of a spawn; null when there are no words.
class ArgumentVector {
 public:
  explicit ArgumentVector(std::vector<RWCString> words) : words_(std::move(words)) {
    for (auto& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
  }
  char** get() { return words_.empty() ? nullptr : pointers_.data(); }

 private:
  std::vector<RWCString> words_;
  std::vector<char*> pointers_;
};

// What a spawn's failure means to the user: the text, with a name in front of or behind it.
struct SpawnError {
  enum class Name { none, hostBefore, hostBehind, executableBefore };
  int code;
  const char* text;
  Name name;
};

constexpr SpawnError kSpawnErrors[] = {
    {PvmBadParam, "bad argument value", SpawnError::Name::none},
    {PvmNoHost, ": bad host name", SpawnError::Name::hostBefore},
    {PvmNoFile, " cannot be found", SpawnError::Name::executableBefore},
    {PvmNoMem, "Not enough memory on ", SpawnError::Name::hostBehind},
    {PvmSysErr, "failed to connect to ", SpawnError::Name::hostBehind},
    {PvmOutOfRes, "out of resource", SpawnError::Name::none},
};

const SpawnError* findSpawnError(int code) {
  const auto* row = std::find_if(std::begin(kSpawnErrors), std::end(kSpawnErrors),
                                 [code](const SpawnError& error) { return error.code == code; });
  return row == std::end(kSpawnErrors) ? nullptr : row;
}

// The answer of the call comes before the code in the task's place; "ok" when neither is listed.
RWCString spawnErrorText(int answer, int taskCode, const RWCString& host,
                         const RWCString& executable) {
  const SpawnError* error = findSpawnError(answer);
  if (error == nullptr) error = findSpawnError(taskCode);
  if (error == nullptr) return "ok";
  switch (error->name) {
    case SpawnError::Name::hostBefore:
      return host + error->text;
    case SpawnError::Name::hostBehind:
      return error->text + host;
    case SpawnError::Name::executableBefore:
      return executable + error->text;
    case SpawnError::Name::none:
      break;
  }
  return error->text;
}

/// True when something stands in the sockets to the virtual machine that was not read yet.
bool isReadable() {
  int* descriptors = nullptr;
  const int count = std::max(pvm_getfds(&descriptors), 0);
  std::vector<pollfd> sockets(static_cast<std::size_t>(count), {0, POLLIN, 0});
  for (int i = 0; i < count; ++i) sockets[static_cast<std::size_t>(i)].fd = descriptors[i];
  return count > 0 && poll(sockets.data(), sockets.size(), 0) > 0;
}

/// As pvm_nrecv. That reads one message at most and gives up when it isn't the one asked for:
/// behind each line that a task prints all that has come stayed for the next call. Where nothing
/// was a millisecond ago nothing is looked for: a cycle asks for hundreds of tasks in a row.
int receiveNow(int tid, int tag) {
  using Clock = std::chrono::steady_clock;
  constexpr int kMostReads = 10000;
  constexpr auto kQuiet = std::chrono::milliseconds(1);
  static Clock::time_point quiet;
  int answer = pvm_nrecv(tid, tag);
  if (answer != 0 || Clock::now() - quiet < kQuiet) return answer;
  for (int i = 0; i < kMostReads; ++i) {
    if (!isReadable()) {
      quiet = Clock::now();
      return 0;
    }
    answer = pvm_nrecv(tid, tag);
    if (answer != 0) return answer;
  }
  return 0;
}

/// Tag of the trace messages, far from those of the tools.
constexpr int kTraceTag = 0x544c0000;
bool gWatchesEnds = false;

/// The integers of the active receive buffer. Texts among them come in whole words, too.
std::vector<int> receivedIntegers() {
  std::vector<int> values(static_cast<std::size_t>(TL_virtual_machine_message_size()) /
                          sizeof(int));
  std::size_t count = 0;
  while (count < values.size() && pvm_upkint(&values[count], 1, 1) >= 0) ++count;
  values.resize(count);
  return values;
}

/// Reads an end of a task out of a trace message; false for any other. The first of its kind
/// describes its fields, each with the field's number and type in front: (mark, event, length and
/// words of the name, then number, type, value ...). The later ones are the bare values: (mark,
/// event, seconds, microseconds, tid, status ...).
bool readTracedEnd(std::int32_t& tid, std::int32_t& waitStatus) {
  const std::vector<int> values = receivedIntegers();
  if (values.size() < 3 || values[1] != TEV_ENDTASK) return false;
  if (values[0] == TEV_MARK_EVENT_RECORD && values.size() > 5) {
    tid = values[4];
    waitStatus = values[5];
    return true;
  }
  if (values[0] != TEV_MARK_EVENT_DESC || values[2] < 0) return false;
  bool hasTid = false;
  bool hasStatus = false;
  const std::size_t name = (static_cast<std::size_t>(values[2]) + sizeof(int) - 1) / sizeof(int);
  for (std::size_t i = 3 + name; i + 2 < values.size(); i += 3) {
    if (values[i] == TEV_DID_TID) {
      tid = values[i + 2];
      hasTid = true;
    } else if (values[i] == TEV_DID_TST) {
      waitStatus = values[i + 2];
      hasStatus = true;
    }
  }
  return hasTid && hasStatus;
}

int refuseText(int code) {
  console() << "TL_virtual_machine_unpack_message_buffer error: " << code << '\n';
  return 0;
}

void rememberOwnHost(const std::vector<TLVirtualMachineHost>& hosts) {
  const int own = pvm_tidtohost(pvm_mytid());
  const auto host = std::find_if(hosts.begin(), hosts.end(),
                                 [own](const TLVirtualMachineHost& h) { return h.tid == own; });
  if (host != hosts.end()) gOwnHost = *host;
}

std::vector<TLVirtualMachineHost> hostTable() {
  std::int32_t hostCount = 0;
  std::int32_t archCount = 0;
  std::vector<TLVirtualMachineHost> hosts;
  TL_virtual_machine_config(hostCount, archCount, hosts);
  return hosts;
}

/// The daemon of the other host on which `tid` lives; 0 for a task of this one, and for what is no
/// task.
std::int32_t otherHostOf(std::int32_t tid) {
  constexpr std::int32_t kTaskBits = (1 << 18) - 1;
  constexpr std::int32_t kSpecial = 1 << 30;
  if (tid <= 0 || (tid & kSpecial) != 0 || (tid & kTaskBits) == 0) return 0;
  if (gOwnHost.tid == 0) hostTable();
  if ((tid | kTaskBits) == (gOwnHost.tid | kTaskBits)) return 0;
  return std::max(pvm_tidtohost(tid), 0);
}

RWCString hostNameOf(std::int32_t tid) {
  const auto hosts = hostTable();
  const auto host = std::find_if(hosts.begin(), hosts.end(),
                                 [tid](const TLVirtualMachineHost& h) { return h.tid == tid; });
  return host == hosts.end() ? std::to_string(tid) : host->name;
}

/// The daemon of another host by the host's name; 0 for this host and for one that isn't there.
std::int32_t otherHostNamed(const RWCString& name) {
  const auto hosts = hostTable();
  const auto host = std::find_if(hosts.begin(), hosts.end(),
                                 [&](const TLVirtualMachineHost& h) { return h.name == name; });
  return host == hosts.end() || host->tid == gOwnHost.tid ? 0 : host->tid;
}

// A host may have fallen silent since the launch began, while files were carried to it.
void waitForHost(const RWCString& host) {
  constexpr auto kLook = std::chrono::milliseconds(100);
  while (TL_virtual_machine_obstacle(host)) {
    evalScript("update");
    std::this_thread::sleep_for(kLook);
  }
}

RWCString localMachineName() {
  constexpr std::size_t kLongest = 256;
  const RWCString name = hostForm().hostName();
  return name.substr(0, std::min(name.find('.'), kLongest));
}

bool gToBePassedOn = false;
int gDaemonSocket = -1;

/// Called at the first message that was sent.
bool awaitAtTheEnd() {
  int* descriptors = nullptr;
  if (pvm_getfds(&descriptors) > 0) gDaemonSocket = descriptors[0];
  return std::atexit(TL_virtual_machine_await_sent) == 0;
}

}  // namespace

void TL_virtual_machine_allow(bool allowed) {
  gAllowed = allowed;
}

std::int32_t TL_virtual_machine_config(std::int32_t& hostCount, std::int32_t& archCount,
                                       std::vector<TLVirtualMachineHost>& hosts) {
  hosts.clear();
  hostCount = 0;
  archCount = 0;
  if (!gAllowed) return PvmSysErr;
  pvmhostinfo* table = nullptr;
  const int answer = pvm_config(&hostCount, &archCount, &table);
  if (answer < 0 || table == nullptr) return answer;
  for (int i = 0; i < hostCount; ++i) {
    hosts.push_back(
        {table[i].hi_tid, table[i].hi_name, table[i].hi_arch, table[i].hi_speed, table[i].hi_dsig});
  }
  if (gOwnHost.tid == 0) rememberOwnHost(hosts);
  return answer;
}

const TLVirtualMachineHost* TL_virtual_machine_own_host() {
  return gOwnHost.tid == 0 || !gAllowed || gLost ? nullptr : &gOwnHost;
}

void TL_virtual_machine_use_companions(const RWCString& program) {
  otherHosts().useProgram(program);
}

TLSilentHost TL_virtual_machine_silence(std::int32_t tid) {
  if (!otherHosts().asked() || !gAllowed) return {};
  const std::int32_t host = otherHostOf(tid);
  return host == 0 ? TLSilentHost() : otherHosts().silence(host);
}

TLSilentHost TL_virtual_machine_obstacle(const RWCString& host) {
  const TLVirtualMachineHost* own = TL_virtual_machine_own_host();
  if (!otherHosts().inUse() || (own != nullptr && own->name == host)) return {};
  const std::int32_t tid = otherHostNamed(host);
  return tid == 0 ? TLSilentHost() : otherHosts().obstacle(tid, hostNameOf);
}

std::int32_t TL_virtual_machine_spawn(const RWCString& host, const RWCString& executable,
                                      const TLProcessArguments& arguments, std::int32_t& tid) {
  ArgumentVector words(commandWords(arguments));
  waitForHost(host);
  int task = 0;
  const int answer =
      pvm_spawn(mutableText(executable), words.get(), PvmTaskHost, mutableText(host), 1, &task);
  tid = task;
  gLastSpawn = "ok";
  if (answer == 1) {
    evalScript("task_manager_receive_message start_status_ok");
    return 0;
  }
  const RWCString error = spawnErrorText(answer, task, host, executable);
  evalScript("task_manager_receive_message \"TL_virtual_machine_errcode " + error + "\"");
  evalScript("update");
  gLastSpawn = error;
  return task;
}

const RWCString& TL_virtual_machine_last_spawn() {
  return gLastSpawn;
}

void TL_virtual_machine_watch_ends() {
  if (!gAllowed || pvm_mytid() < 0) return;
  pvm_setopt(PvmTraceTid, pvm_mytid());
  pvm_setopt(PvmTraceCode, kTraceTag);
  pvm_setopt(PvmTraceBuffer, 0);
  pvm_setopt(PvmTraceOptions, PvmTraceFull);
  gWatchesEnds = true;
}

bool TL_virtual_machine_next_end(std::int32_t& tid, std::int32_t& waitStatus) {
  while (gWatchesEnds && !gLost && receiveNow(-1, kTraceTag) > 0) {
    if (readTracedEnd(tid, waitStatus)) return true;
  }
  return false;
}

std::int32_t TL_virtual_machine_status(std::int32_t tid) {
  if (!gAllowed) return PvmSysErr;
  const std::int32_t host = otherHosts().inUse() ? otherHostOf(tid) : 0;
  if (host == 0) return pvm_pstat(tid);
  return otherHosts().status(host, tid, hostNameOf, [tid] { return pvm_pstat(tid); });
}

std::int32_t TL_virtual_machine_kill(std::int32_t tid) {
  return tid < 1 ? 0 : pvm_kill(tid);
}

std::int32_t TL_virtual_machine_parent() {
  if (!gAllowed) return 0;
  const int parent = pvm_parent();
  return parent == PvmNoParent ? 0 : parent;
}

std::int32_t TL_virtual_machine_mytid() {
  if (!gAllowed) return 0;
  return std::max(pvm_mytid(), 0);
}

void TL_virtual_machine_catchout(std::FILE* stream) {
  pvm_catchout(stream);
}

int TL_virtual_machine_init_send_buffer() {
  return truth(pvm_initsend(PvmDataDefault));
}

int TL_virtual_machine_pack_int(const std::int32_t* values, std::int32_t count) {
  return truth(pvm_pkint(const_cast<int*>(values), count, 1));
}

int TL_virtual_machine_pack_float(const float* values, std::int32_t count) {
  return truth(pvm_pkfloat(const_cast<float*>(values), count, 1));
}

int TL_virtual_machine_pack_double(const double* values, std::int32_t count) {
  return truth(pvm_pkdouble(const_cast<double*>(values), count, 1));
}

int TL_virtual_machine_pack_string(const RWCString& text) {
  return truth(pvm_pkstr(mutableText(text)));
}

int TL_virtual_machine_send(std::int32_t tid, std::int32_t tag) {
  const int sent = truth(pvm_send(tid, tag));
  if (sent != 0) {
    [[maybe_unused]] static const bool toTheEnd = awaitAtTheEnd();
    gToBePassedOn = true;
  }
  return sent;
}

// The pvmd drops what still stands in the socket of a process that has ended. It takes requests in
// their order, so any answer will do. One that has gone isn't asked: the library would complain on
// the user's screen.
void TL_virtual_machine_await_sent() {
  if (!std::exchange(gToBePassedOn, false)) return;
  pollfd daemon = {gDaemonSocket, POLLRDHUP, 0};
  if (gDaemonSocket >= 0 && poll(&daemon, 1, 0) == 0) pvm_pstat(pvm_mytid());
}

std::int32_t TL_virtual_machine_receive(std::int32_t tid, std::int32_t tag) {
  return std::max(pvm_recv(tid, tag), 0);
}

std::int32_t TL_virtual_machine_receive_nowait(std::int32_t tid, std::int32_t tag) {
  const int answer = receiveNow(tid, tag);
  gLost = answer == PvmSysErr;
  return std::max(answer, 0);
}

bool TL_virtual_machine_lost() {
  return gLost;
}

int TL_virtual_machine_buffer_info(std::int32_t buffer, std::int32_t& source, std::int32_t& tag) {
  int bytes = 0;
  return truth(pvm_bufinfo(buffer, &bytes, &tag, &source));
}

std::int32_t TL_virtual_machine_message_size() {
  int bytes = 0;
  int tag = 0;
  int source = 0;
  return pvm_bufinfo(pvm_getrbuf(), &bytes, &tag, &source) < 0 ? 0 : bytes;
}

int TL_virtual_machine_free_buffer(std::int32_t buffer) {
  return truth(pvm_freebuf(buffer));
}

int TL_virtual_machine_unpack_int(std::int32_t* value) {
  return truth(pvm_upkint(value, 1, 1));
}

int TL_virtual_machine_unpack_double(double* value) {
  return truth(pvm_upkdouble(value, 1, 1));
}

int TL_virtual_machine_unpack_float(float* values, std::int32_t count) {
  return truth(pvm_upkfloat(values, count, 1));
}

int TL_virtual_machine_unpack_message_buffer(RWCString& text, std::int32_t length) {
  // PVM writes as many bytes as the string itself announces, whatever was said before it, but never
  // more than the message holds: room for that many is safe against both numbers.
  const std::int32_t size = TL_virtual_machine_message_size();
  if (length < 0 || length > size) return refuseText(PvmNoData);
  RWCString bytes(static_cast<std::size_t>(size) + 1, '\0');
  const int answer = pvm_upkstr(bytes.data());
  if (answer < 0) return refuseText(answer);
  bytes.resize(bytes.find('\0'));
  if (bytes.size() > static_cast<std::size_t>(length)) return refuseText(PvmOverflow);
  text = std::move(bytes);
  return 1;
}

RWCString ownHostName() {
  if (TL_virtual_machine_own_host() == nullptr) {
    std::int32_t hostCount = 0;
    std::int32_t archCount = 0;
    std::vector<TLVirtualMachineHost> hosts;
    if (TL_virtual_machine_config(hostCount, archCount, hosts) < 0) return localMachineName();
  }
  return gOwnHost.tid == 0 ? localMachineName() : gOwnHost.name;
}
