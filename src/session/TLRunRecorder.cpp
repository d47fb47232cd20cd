#include "session/TLRunRecorder.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "platform/TLProcess.h"
#include "taskengine/TLMessageItems.h"
#include "taskengine/TLTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

constexpr auto kProgressInterval = std::chrono::seconds(1);
constexpr std::size_t kMostNames = 200;
constexpr auto kRecordInterval = std::chrono::seconds(2);

double secondsNow() {
  using std::chrono::duration;
  return duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

/// What is looked at in each cycle, of as many as a thousand steps. The rest of an entry changes
/// only together with these.
bool differs(const TLRunStateStep& entry, const TLSubTask& step) {
  return entry.status != step.status || entry.children != step.children ||
         entry.reason != step.endReason || entry.queueState != step.queueState ||
         entry.transfer != step.transfer || entry.silentSince != step.silentHost().since;
}

std::vector<std::string> textsOf(const TLProcessMessage& message) {
  std::vector<std::string> texts;
  for (const auto& part : message.subMessages) {
    if (const RWCString* text = textOf(*part)) texts.push_back(*text);
  }
  return texts;
}

TLKeptStep keptStep(const TLSubTask& step) {
  TLKeptStep kept;
  const TLLoadBalancing& balance = step.loadBalancing;
  if (step.status != TLSubTask::Pending && step.spawnArguments.count() > 0) {
    kept.command.push_back(step.executable);
    for (const auto& argument : step.spawnArguments.entries()) {
      if (argument->type() != "none") kept.command.push_back(argument->type());
      kept.command.push_back(argument->value());
    }
  }
  kept.crashLines = textsOf(step.errorLines);
  kept.endTexts = textsOf(step.finishMessage);
  kept.residuals = step.residuals.series();
  if (balance.parallel == 0) return kept;
  kept.processHosts = balance.processNames;
  kept.blockProcess = balance.blockProcess;
  for (std::size_t i = 0; i < kept.blockProcess.size(); ++i) {
    kept.blockCells.push_back(balance.nbCells(static_cast<std::int32_t>(i)));
  }
  return kept;
}

/// How many iterations a solver was asked for, as far as it can be known: its argument
/// "-iterations", or the integer setting of that name in its steering set. 0 when neither is there.
std::int32_t iterationsAsked(const TLSubTask& step) {
  RWCString value;
  if (step.arguments.find("-iterations", value) != 0) return std::max(std::atoi(value.c_str()), 0);
  if (!step.steering) return 0;
  for (const auto& parameter : step.steering->parameters) {
    for (const auto& entry : parameter->integerEntries) {
      if (entry->name == "iterations" || entry->name == "number of iterations") {
        return std::max(entry->value, 0);
      }
    }
  }
  return 0;
}

}  // namespace

TLRunRecorder& runRecorder() {
  static TLRunRecorder recorder;
  return recorder;
}

// What a killed daemon of the same task has left.
void TLRunRecorder::removeStale() const {
  for (const auto& other : TLRunState::list(directory_)) {
    if (other.taskFile == state_.taskFile && other.host == state_.host &&
        !processExists(other.pid)) {
      TLRunState::remove(directory_, other.pid);
    }
  }
}

void TLRunRecorder::begin(const TLTask& task, const RWCString& directory) {
  directory_ = directory;
  state_ = TLRunState();
  copies_.clear();
  state_.tid = TL_virtual_machine_mytid();
  state_.pid = hostForm().processId();
  state_.host = ownHostName();
  state_.taskFile = gTaskFileName;
  state_.taskName = task.name;
  state_.logFile = gCatchoutFileName;
  state_.started = secondsNow();
  if (!directory_.empty()) removeStale();
  update(task);
  // A launch doesn't come back before its copies are done.
  setTransferObserver([this, &task] { update(task); });
}

bool TLRunRecorder::takeAll(const TLTask& task) {
  const bool isNew = state_.steps.size() != task.subTasks.size() || state_.steps.empty();
  bool now = isNew;
  state_.steps.resize(task.subTasks.size());
  copies_.resize(task.subTasks.size());
  for (std::size_t i = 0; i < task.subTasks.size(); ++i) {
    takeProgress(task, i);
    if (!isNew && !differs(state_.steps[i], *task.subTasks[i])) continue;
    record(task, i);
    now = true;
  }
  return now;
}

void TLRunRecorder::update(const TLTask& task) {
  if (directory_.empty()) return;
  const bool now = takeAll(task);
  if (now) changed_ = recordBehind_ = true;
  const auto time = Clock::now();
  if (now || (changed_ && time - written_ >= kProgressInterval)) {
    state_.save(directory_);
    written_ = time;
    changed_ = false;
  }
  if (recordBehind_ && time - recordWritten_ >= kRecordInterval) {
    keptRun(task).save(directory_);
    recordWritten_ = time;
    recordBehind_ = false;
  }
}

void TLRunRecorder::record(const TLTask& task, std::size_t position) {
  const TLSubTask& step = *task.subTasks[position];
  TLRunStateStep& entry = state_.steps[position];
  if (step.status == TLSubTask::Running && entry.started == 0) entry.started = secondsNow();
  if (step.isTerminal() && entry.ended == 0) entry.ended = secondsNow();
  entry.name = step.name;
  entry.executable = step.executable;
  entry.host = step.hostName;
  entry.status = step.status;
  entry.children = step.children;
  entry.queue = step.loadBalancing.queuingSystemActivated;
  entry.jobNumber = step.isQueued() && !step.children.empty() ? step.children.front() : 0;
  entry.reason = step.endReason;
  entry.queueState = step.queueState;
  if (entry.transfer != step.transfer) noteTransfer(position, step.transfer);
  entry.transfer = step.transfer;
  const TLSilentHost silent = step.silentHost();
  entry.silentHost = silent.name;
  entry.silentSince = silent.since;
  entry.iterationsAsked = iterationsAsked(step);
}

void TLRunRecorder::noteTransfer(std::size_t position, const TLTransferProgress& transfer) {
  auto& copies = copies_[position];
  const bool open = !copies.empty() && copies.back().ended <= 0;
  if (transfer.direction.empty()) {
    if (!open) return;
    copies.back().ended = secondsNow();
    copies.back().problem = transfer.problem;
    return;
  }
  if (!open || copies.back().direction != transfer.direction ||
      copies.back().host != transfer.host) {
    TLKeptCopy& begun = copies.emplace_back();
    begun.direction = transfer.direction;
    begun.host = transfer.host;
    begun.started = secondsNow();
  }
  TLKeptCopy& copy = copies.back();
  copy.files = std::max(transfer.count, transfer.number);
  copy.bytes = transfer.total > 0 ? transfer.total : transfer.bytes + transfer.fileBytes;
  if (copy.names.size() >= kMostNames || transfer.file.empty()) return;
  if (copy.names.empty() || copy.names.back() != transfer.file) copy.names.push_back(transfer.file);
}

void TLRunRecorder::takeProgress(const TLTask& task, std::size_t position) {
  const TLSubTask& step = *task.subTasks[position];
  TLRunStateStep& entry = state_.steps[position];
  if (entry.lastText == step.lastText && entry.iteration == step.residuals.iteration()) return;
  entry.lastText = step.lastText;
  entry.iteration = step.residuals.iteration();
  entry.residuals = step.residuals.ends();
  changed_ = recordBehind_ = true;
}

TLKeptRun TLRunRecorder::keptRun(const TLTask& task) const {
  TLKeptRun kept;
  kept.run = state_;
  for (std::size_t i = 0; i < task.subTasks.size(); ++i) {
    kept.steps.push_back(keptStep(*task.subTasks[i]));
    if (i < copies_.size()) kept.steps.back().copies = copies_[i];
  }
  return kept;
}

void TLRunRecorder::end(const TLTask& task) {
  if (directory_.empty()) return;
  setTransferObserver(nullptr);
  takeAll(task);
  TLKeptRun kept = keptRun(task);
  kept.ended = secondsNow();
  kept.keepLog(directory_);
  kept.save(directory_);
  TLKeptRun::removeOld(directory_);
  TLRunState::remove(directory_, state_.pid);
  directory_.clear();
}
