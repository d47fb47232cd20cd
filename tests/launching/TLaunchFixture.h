#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "doubles/TLScriptRecording.h"
#include "doubles/TLVirtualMachineRecording.h"
#include "launching/TLLaunching.h"
#include "launching/TRunFileDouble.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "taskengine/TLTask.h"

using TWords = std::vector<std::string>;
using TPairs = std::vector<std::pair<std::string, std::string>>;

/// Two hosts: "here", on which the daemon runs, and "far", both UNIX; "win", a Windows host. The
/// daemon's tid is 99. A suite in a directory of its own.
class TLaunchFixture : public testing::Test {
 protected:
  TLaunchFixture() : step(makeHandle<TLSubTask>()) {
    resetRecordedScript();
    resetRecordedVirtualMachine();
    runFileDouble() = {};
    runFileDouble().facts = {true, 0, "single", true, 0};
    auto& vm = recordedVirtualMachine();
    vm.hosts = {{1, "here", "LINUX64", 1000, 1},
                {2, "far", "LINUX64", 1000, 1},
                {3, "win", "WIN32", 1000, 1}};
    vm.ownHost = "here";
    vm.mytid = 99;
    step->name = "VELSTRA";
    step->hostName = "here";
  }

  /// The win32 form with its suite in "C:\\suite", of which these 64-bit programs are installed.
  void useWin32(const TWords& bin64) {
    for (const auto& program : bin64) dir.write("suite/bin64/" + program, "");
    former_ = exchangeHostForm(makeWin32Form(dir.path()));
    talvenDir_ = std::make_unique<TVariable>("TALVEN_DIR", std::string("C:\\suite"));
  }
  void usePosix() {
    former_ = exchangeHostForm(makePosixForm());
    talvenDir_ = std::make_unique<TVariable>("TALVEN_DIR", dir.file("suite"));
  }
  ~TLaunchFixture() override {
    if (former_) exchangeHostForm(std::move(former_));
  }

  void arguments(const TPairs& pairs) {
    step->arguments.clear();
    for (const auto& [type, value] : pairs) step->arguments.append(type, value);
  }
  void processes(const TWords& names) {
    step->loadBalancing.processNames.assign(names.begin(), names.end());
  }
  /// "program on host: word|word|..." of the only start; the number of starts otherwise.
  std::string started() const {
    const auto& spawns = recordedVirtualMachine().spawns;
    if (spawns.size() != 1) return std::to_string(spawns.size()) + " starts";
    std::string text = spawns[0].executable + " on " + spawns[0].host + ":";
    for (const auto& word : spawns[0].words) text += "|" + word;
    return text;
  }
  bool told(const std::string& line) const {
    const auto& lines = recordedScript().lines;
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }

  TTempDir dir;
  Handle<TLSubTask> step;

 private:
  std::unique_ptr<TLHostForm> former_;
  std::unique_ptr<TVariable> talvenDir_;
};
