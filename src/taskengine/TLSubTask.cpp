#include "taskengine/TLSubTask.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "launching/TLProgramNames.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "taskengine/TLLauncher.h"
#include "taskengine/TLTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

constexpr std::int32_t kStartErrorOffset = 10000;

constexpr auto kStatusWords = std::to_array<const char*>(
    {"pending", "running", "finished ok", "finished ko", "crashed", "stopped"});

template <class T>
T itemAt(const std::vector<T>& list, std::int32_t position) {
  const auto i = static_cast<std::size_t>(position);
  return position >= 0 && i < list.size() ? list[i] : T();
}

void addOnce(std::vector<std::int32_t>& list, std::int32_t value) {
  if (std::find(list.begin(), list.end(), value) == list.end()) list.push_back(value);
}

}  // namespace

TLSubTask::TLSubTask() : steering(makeHandle<TLSteeringParameters>()) {
  finishMessage.tag = kNoEndSeen;
  addParent(TL_virtual_machine_parent());
  updateHostKind();
  remoteTmpDir = isWin32Host != 0 ? "C:\\tmp" : "/tmp";
}

TLSubTask::~TLSubTask() = default;

void TLSubTask::assign(const TLSubTask& other) {
  virtualPartition.assign(other.virtualPartition);
  parents.clear();
  parentSteeringDirty.clear();
  steeringDirty = 0;
  addParent(TL_virtual_machine_parent());
  startingDate = -1;
  startAfterTask.clear();
  endingDate = -1;
  status = Pending;
  forgetEnd();
  arguments.assign(other.arguments);
  perfCurveName = "unknown";
  name = other.name;
  executable = other.executable;
  hostName = other.hostName;
  waitingTask = other.waitingTask;
  automaticMemoryEstimation = other.automaticMemoryEstimation;
  userSolverPrecision = other.userSolverPrecision;
  integerSize = other.integerSize;
  realSize = other.realSize;
  loadBalancing.assign(other.loadBalancing);
  updateHostKind();
  remoteTmpDir = other.remoteTmpDir;
  remoteRunDir.clear();
  transfer = {};
  remoteLogin = other.remoteLogin;
  steeringAsked = other.steeringAsked;
  enabled = other.enabled;
  parentTask_ = other.parentTask_;
}

bool TLSubTask::argumentsDefined() {
  const auto undefined = [](const Handle<TLProcessArgument>& argument) {
    return argument->value() == "unknown" || argument->value() == "undefined";
  };
  const auto& entries = arguments.entries();
  if (std::none_of(entries.begin(), entries.end(), undefined)) return true;
  gLastError = "SubTask arguments not yet defined";
  return false;
}

int TLSubTask::start() {
  forgetEnd();
  residuals.clear();
  lastText.clear();
  if (enabled == 0) {
    status = FinishedOk;
    noteEnd(disabledBehind.empty() ? TLStepEnd::Kind::disabled : TLStepEnd::Kind::behindFailure,
            disabledBehind);
    return 0;
  }
  hostWasKnown_ = hostIsKnown(hostName);
  const int result = launch();
  if (result == 0 && status == FinishedOk) noteEnd(TLStepEnd::Kind::needless);
  return result;
}

int TLSubTask::launch() {
  if (isMarineStep(name)) return launcher().startMarineStep(*this);
  if (name == "PROBES2QVK") return launcher().startProbesTool(*this);
  return launcher().startStep(*this);
}

RWCString TLSubTask::statusWord() const {
  const auto known = static_cast<std::int32_t>(kStatusWords.size());
  return status >= 0 && status < known ? kStatusWords[static_cast<std::size_t>(status)]
                                       : "not a correct status";
}

Handle<TLProcessArgument> TLSubTask::argument(std::int32_t position) const {
  return itemAt(arguments.entries(), position);
}

Handle<TLProcessArgument> TLSubTask::spawnArgument(std::int32_t position) const {
  return itemAt(spawnArguments.entries(), position);
}

std::int32_t TLSubTask::child(std::int32_t position) const {
  return itemAt(children, position);
}

std::int32_t TLSubTask::parent(std::int32_t position) const {
  return itemAt(parents, position);
}

std::int32_t TLSubTask::firstProcessId() const {
  return itemAt(processIds, 0);
}

void TLSubTask::addChild(std::int32_t tid) {
  addOnce(children, tid);
}

void TLSubTask::addProcessId(std::int32_t id) {
  addOnce(processIds, id);
}

void TLSubTask::addParent(std::int32_t tid) {
  if (std::find(parents.begin(), parents.end(), tid) != parents.end()) return;
  parents.push_back(tid);
  parentSteeringDirty.push_back(steeringDirty);
}

Handle<TLTask> TLSubTask::parentTask() const {
  if (!parentTask_) console() << "Warning. TLSubTask::parentTask returns NULL\n" << std::flush;
  return parentTask_;
}

void TLSubTask::setParentTask(TLTask* task) {
  parentTask_ = Handle<TLTask>(task);
}

void TLSubTask::updateHostKind() {
  isWin32Host = hostIsWin32(hostName);
}

int TLSubTask::pollMessages(std::int32_t tid, std::int32_t tag) {
  while (true) {
    const auto message = makeHandle<TLProcessMessage>(steering);
    if (!message->receiveNoWait(tid, tag)) return 1;
    inbox.push_back(message);
    const Handle<TLProcessMessage> first = inbox.front();
    handleMessage(*first);
    inbox.clear();
  }
}

int TLSubTask::waitMessage(std::int32_t tid, std::int32_t tag) {
  const auto message = makeHandle<TLProcessMessage>(steering);
  if (!message->receive(tid, tag)) return 1;
  inbox.push_back(message);
  const auto waiting = inbox;
  for (const auto& received : waiting) handleMessage(*received);
  inbox.clear();
  return 1;
}

void TLSubTask::sendToParents(TLProcessMessage& message) const {
  for (const std::int32_t tid : parents) {
    if (tid <= 0) continue;
    message.destination = tid;
    message.send();
  }
}

void TLSubTask::sendToParentsOffset(TLProcessMessage& message) const {
  for (const std::int32_t tid : parents) {
    if (tid <= 0) continue;
    message.tag += kStartErrorOffset;
    message.destination = tid;
    message.send();
  }
}

int TLSubTask::sendToChildren(TLProcessMessage& message) const {
  for (const std::int32_t tid : children) {
    if (tid <= 0) continue;
    message.destination = tid;
    message.send();
  }
  return children.empty() ? 0 : 1;
}
