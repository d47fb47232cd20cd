#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <regex>
#include <sstream>

#include "doubles/TLScriptRecording.h"
#include "doubles/TLVirtualMachineRecording.h"
#include "launching/TLHostTransfer.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "support/Definitions.h"
#include "support/FullProject.h"
#include "taskengine/TLSubTask.h"

/// A step of host "far" (UNIX) or "win" (Windows), and a suite whose remote tools write down the
/// words they got. Everything that is said or done stands in `log`, in its order; the test's
/// directory as DIR and the number of the run's directory as N.
class TTransferFixture : public testing::Test {
 protected:
  using Call = int (TLHostTransfer::*)(TLSubTask&);
  static constexpr Call kStep = &TLHostTransfer::transferStep;
  static constexpr Call kUnstructured = &TLHostTransfer::transferHexa_;
  static constexpr Call kOptimiser = &TLHostTransfer::transferSculpt;
  static constexpr Call kBack = &TLHostTransfer::retrieveResults;

  void SetUp() override { use(TLHostKind::posix); }
  void TearDown() override { exchangeHostForm(std::move(former_)); }

  void use(TLHostKind form) {
    win32_ = form == TLHostKind::win32;
    auto old = exchangeHostForm(win32_ ? makeWin32Form() : makePosixForm());
    if (!former_) former_ = std::move(old);
    talvenDir_.reset();
    tmpDir_.reset();
    talvenDir_ = std::make_unique<TVariable>("TALVEN_DIR", local("suite"));
    tmpDir_ = std::make_unique<TVariable>("TMP_DIR", local("tmp"));
    dir.write("tmp/.keep", "");
    for (const std::string name : {"tlrsh", "tlrcp"}) {
      dir.write("suite/bin/" + name + (win32_ ? ".bat" : ""),
                "#!/bin/sh\n{ printf %s " + name +
                    "; for i; do printf '|%s' \"$i\"; done; echo; } >> '" + dir.file("log") +
                    "'\n. '" + dir.file("behaviour") + "'\nexit 0\n",
                true);
    }
    // The table of file commands is made once in a process: these stand in for both forms.
    for (const std::string name : {"rm", "cp"}) {
      dir.write("suite/bin/" + name,
                "#!/bin/sh\nfor i; do set -- \"$@\" \"$(printf %s \"${i#C:}\" | tr '\\\\' /)\"; "
                "shift; done\nexec /bin/" +
                    name + " \"$@\"\n",
                true);
    }
    behave("");
    resetRecordedScript();
    resetRecordedVirtualMachine();
    recordedVirtualMachine().ownHost = "here";
    recordedVirtualMachine().hosts = {{1, "here", "LINUX64", 1000, 1},
                                      {2, "far", "LINUX64", 1000, 1},
                                      {3, "win", "WIN32", 1000, 1}};
    recordedScript().answer = [this](const RWCString& line) {
      if (line != "update")
        std::ofstream(dir.file("log"), std::ios::app) << "script " + line + "\n";
      return 0;
    };
  }

  /// What both tools do behind their note: shell lines, with their words in $*.
  void behave(const std::string& lines) const { dir.write("behaviour", lines + "\n"); }
  std::string local(const std::string& name) const {
    return win32_ ? "C:" + backslashes(dir.file(name)) : dir.file(name);
  }
  static std::string backslashes(std::string path) {
    for (char& c : path) c = c == '/' ? '\\' : c;
    return path;
  }

  /// A fresh step on `host` with these marked arguments.
  void makeStep(const std::string& name, const std::string& host,
                const std::vector<std::string>& values) {
    step = makeHandle<TLSubTask>();
    step->name = name;
    step->hostName = host;
    step->remoteLogin = "me";
    step->remoteTmpDir = host == "win" ? "C:\\tmp" : "/tmp";
    for (const auto& value : values) {
      step->arguments.append("none", value);
      step->arguments.entries().back()->setLocalFile(1);
    }
    step->spawnArguments.assign(step->arguments);
    step->updateHostKind();
    dir.write("log", "");
  }

  /// The log of one call, which must answer `answer`; what it tells on the console is `told`.
  std::string log(Call call, int answer) {
    dir.write("log", "");
    std::ostringstream console;
    const TLConsoleRedirect redirect(console);
    EXPECT_EQ((transfer.*call)(*step), answer);
    told = std::regex_replace(normal(console.str()), std::regex("BOUNDARY CONDITION.*\n"), "");
    return normal(dir.read("log"));
  }
  /// The same for one more start of the step.
  std::string logOfStart(Call call, int answer) {
    step->spawnArguments.assign(step->arguments);
    return log(call, answer);
  }
  std::string normal(std::string text) const {
    const std::string here = backslashes(dir.path());
    const std::string doubled = std::regex_replace(here, std::regex("\\\\"), "\\\\");
    for (const auto& path : {dir.path(), "C:" + doubled, "C:" + here, here}) {
      for (auto at = text.find(path); at != std::string::npos; at = text.find(path)) {
        text.replace(at, path.size(), "DIR");
      }
    }
    return std::regex_replace(numbered(text), std::regex("task_manager_receive_message"),
                              "message");
  }
  static std::string numbered(const std::string& text) {
    return std::regex_replace(text, std::regex("tm_[0-9]*0001"), "tm_N");
  }
  std::string value(int entry = 0) const {
    return numbered(step->spawnArguments.at(entry)->value());
  }

  TTempDir dir;
  TVariable path{"PATH", dir.file("suite/bin") + ":" + std::getenv("PATH")};
  Definitions definitions;
  Handle<TLSubTask> step;
  TLHostTransfer transfer;
  std::string told;
  bool win32_ = false;

 private:
  std::unique_ptr<TLHostForm> former_;
  std::unique_ptr<TVariable> talvenDir_;
  std::unique_ptr<TVariable> tmpDir_;
};
