#pragma once

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "doubles/TLScriptRecording.h"
#include "doubles/TLVirtualMachineRecording.h"
#include "platform/TLConsole.h"
#include "taskengine/TLLauncher.h"
#include "taskengine/TLTaskChildren.h"
#include "taskengine/TLTaskGlobals.h"

/// A launcher that starts nothing but keeps what it is asked to do ("startStep 0": the operation
/// and the step's name). A start that succeeds makes the step running with one child.
class TRecordingLauncher : public TLLauncher {
 public:
  int startStep(TLSubTask& step) override { return started("startStep", step); }
  int startMarineStep(TLSubTask& step) override { return started("startMarineStep", step); }
  int startProbesTool(TLSubTask& step) override { return started("startProbesTool", step); }
  int retrieveResults(TLSubTask& step) override { return done("retrieveResults", step); }
  int retrieveHexa_(TLSubTask& step) override { return done("retrieveHexa_", step); }
  void removeRemoteDir(TLSubTask& step) override { done("removeRemoteDir", step); }
  int removeRemoteResults(TLSubTask& step) override { return done("removeRemoteResults", step); }
  int stopSubTask(TLSubTask& step) override { return done("stopSubTask", step); }

  std::vector<std::string> calls;
  std::map<std::string, int> results;  ///< of a start, by the step's name; absent: 0

 private:
  int done(const char* operation, const TLSubTask& step) {
    calls.push_back(operation + (" " + step.name) +
                    (step.status == TLSubTask::FinishedKo ? "!" : ""));
    return 1;
  }
  int started(const char* operation, TLSubTask& step) {
    calls.push_back(operation + (" " + step.name));
    const auto result = results.find(step.name);
    if (result != results.end() && result->second != 0) return result->second;
    step.children = {nextTid_++};
    step.status = TLSubTask::Running;
    return 0;
  }
  std::int32_t nextTid_ = 1001;
};

/// A daemon's task over the recording doubles, in the console's silence.
class TEngineTest : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;
  static constexpr std::int32_t kParent = 500;
  static constexpr std::int32_t kGone = kVirtualMachineNoTask;

  TEngineTest() {
    resetRecordedVirtualMachine();
    resetRecordedScript();
    vm.parent = kParent;
    gLaunchConfirmed = 1;
    gSuspendRequested = 0;
    gLastError.clear();
    exits_ = 0;
    setTaskManagerEnd([] { ++exits_; });
    setLauncher(&launcher);
    task = makeHandle<TLTaskChildren>();
  }
  ~TEngineTest() override {
    task->clearSubTasks();
    setLauncher(nullptr);
    setTaskManagerEnd(nullptr);
  }

  TLSubTask& add(const std::string& name, const std::string& executable = "tool",
                 std::int32_t waiting = 1) {
    const auto step = makeHandle<TLSubTask>();
    step->name = name;
    step->executable = executable;
    step->waitingTask = waiting;
    step->index = task->subTaskCount();
    task->addSubTask(step);
    return *step;
  }
  /// A step that runs as `tids`.
  TLSubTask& addRunning(const std::string& name, const std::string& executable,
                        const std::vector<std::int32_t>& tids) {
    TLSubTask& step = add(name, executable);
    step.status = TLSubTask::Running;
    step.children = tids;
    return step;
  }
  static void argument(TLSubTask& step, const std::string& type, const std::string& value) {
    step.arguments.append(type, value);
    step.spawnArguments.append(type, value);
  }

  void isGone(std::int32_t tid, std::int32_t answer = kGone) { vm.statuses[tid] = answer; }

  static TLProcessMessage message(std::int32_t tag, std::int32_t source) {
    TLProcessMessage made;
    made.tag = tag;
    made.source = source;
    return made;
  }

  /// Everything that went out since the last call: "500:5 'text' 3".
  Lines sent() {
    Lines lines;
    for (const auto& one : vm.sent) {
      std::ostringstream line;
      line << one.tid << ':' << one.tag;
      describe(one.body, line);
      lines.push_back(line.str());
    }
    vm.sent.clear();
    return lines;
  }
  /// The script lines since the last call, without the constant beginning.
  Lines said() {
    const std::string beginning = "task_manager_receive_message ";
    Lines lines;
    for (const auto& line : recordedScript().lines) {
      lines.push_back(line.starts_with(beginning) ? line.substr(beginning.size()) : line);
    }
    recordedScript().lines.clear();
    return lines;
  }
  Lines launched() { return std::exchange(launcher.calls, {}); }
  std::vector<std::int32_t> statuses() const {
    std::vector<std::int32_t> all;
    for (const auto& step : task->subTasks) all.push_back(step->status);
    return all;
  }

  TLVirtualMachineRecording& vm = recordedVirtualMachine();
  TRecordingLauncher launcher;
  Handle<TLTaskChildren> task;
  std::ostringstream printed;
  TLConsoleRedirect silence{printed};
  static inline int exits_ = 0;

 private:
  static void describe(const TLWireBuffer& body, std::ostream& line) {
    TLWireBuffer copy = body;
    std::int32_t count = 0;
    copy.takeInteger(count);
    for (std::int32_t i = 0; i < count; ++i) {
      std::int32_t type = 0;
      std::int32_t value = 0;
      std::string text;
      copy.takeInteger(type);
      copy.takeInteger(value);
      if (type == 1) {
        line << ' ' << value;
      } else if (type == 7) {
        copy.takeString(text);
        line << " '" << text << '\'';
      } else {
        line << " type " << type;
        return;
      }
    }
  }
};
