#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "integration/PvmPeer.h"
#include "integration/TestDaemon.h"
#include "integration/VirtualMachine.h"
#include "integration/Waiting.h"
#include "platform/TTempDir.h"

/// Tests of the engine as people meet it: the real daemon, real processes of the virtual machine
/// (the fake tool under the names of programs), and this process as the interface.
class EngineDaemon : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;
  using Statuses = std::vector<std::int32_t>;

  void SetUp() override {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    directory = VirtualMachine::shared().directory() / (std::string("engine_") + info->name());
    std::filesystem::create_directories(directory);
    for (const char* program : {"tool", "velstraTurbo", "fwh", "zyv", "sculpt3d", "premetis",
                                "quorelcfd", "postmetis", "probes"}) {
      VirtualMachine::shared().addProgram(program, TL_FAKETOOL);
    }
    ASSERT_GT(PvmPeer::tid(), 0);
  }
  void TearDown() override {
    for (const std::int32_t tid : PvmPeer::others()) PvmPeer::kill(tid);
    waitUntil([] { return PvmPeer::others().empty(); });
    while (PvmPeer::receive(-1, -1, 0)) {
    }
  }

  std::string file(const std::string& name) const { return (directory / name).string(); }
  /// Writes a file: of this directory, or one with a whole path.
  void put(const std::filesystem::path& name, const std::string& text) const {
    std::ofstream(directory / name, std::ios::binary) << text;
  }
  bool has(const std::string& name) const { return std::filesystem::exists(directory / name); }
  bool waitFile(const std::string& name, double seconds = 30) const {
    return waitUntil([&] { return has(name); }, seconds);
  }

  /// A step that runs the fake tool as `executable`: its first argument is the run file
  /// "label.run", its script "label.fake" holds `commands`.
  std::string step(const std::string& label, const std::string& name, const std::string& executable,
                   const Lines& commands, const std::string& lines = {},
                   const std::string& host = {}) const {
    return scripted(label, name, executable, commands, argumentText("none", file(label + ".run")),
                    lines, host);
  }
  /// As `step`, with these arguments in front.
  std::string scripted(const std::string& label, const std::string& name,
                       const std::string& executable, const Lines& commands,
                       const std::string& arguments, const std::string& lines = {},
                       const std::string& host = {}) const {
    std::string script;
    for (const auto& command : commands) script += command + '\n';
    put(label + ".fake", script);
    return TestDaemon::step(
        name, executable,
        lines + argumentsText(arguments + argumentText("-script", file(label + ".fake"))), host);
  }
  /// Script that leaves out the pauses of launches, which are for people's eyes.
  static constexpr const char* kWithoutPauses =
      "rename after wait\n"
      "proc after {args} { if {[llength $args] > 1} { uplevel wait $args } }\n";
  static constexpr const char* kBeside = "  WAITING_TASK 0\n";
  static constexpr const char* kDisabled = "  ENABLED 0\n";

  /// The next message under `tag` as words: "text 3".
  static std::string heard(std::int32_t tag, double seconds = 30) {
    const auto message = PvmPeer::receive(-1, tag, seconds);
    if (!message) return "nothing";
    std::ostringstream words;
    for (const auto& value : message->values()) {
      if (words.tellp() > 0) words << ' ';
      std::visit([&](const auto& item) { words << item; }, value);
    }
    return words.str();
  }
  static std::string received(const std::string& words) {
    return "task_manager_receive_message " + words;
  }
  static std::string phrase(const std::string& words) {
    return "task_manager_receive_message {" + words + "}";
  }
  /// Upcalls among those named, in the order in which they came.
  static Lines order(const TestDaemon& daemon, const Lines& named) {
    Lines found;
    for (const auto& call : daemon.upcalls()) {
      if (std::find(named.begin(), named.end(), call) != named.end()) found.push_back(call);
    }
    return found;
  }
  /// The tasks of the machine other than the daemon. One that is only about to join has no tid yet.
  static std::vector<std::int32_t> tools(const TestDaemon& daemon) {
    std::vector<std::int32_t> found = PvmPeer::others();
    std::erase_if(found, [&](std::int32_t tid) { return tid <= 0 || tid == daemon.tid(); });
    return found;
  }

  std::filesystem::path directory;
};
