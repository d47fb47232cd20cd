#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/TLLockFile.h"

/// A tool that does as it is told, command by command: stands in for any program of a task while a
/// task file, the daemon or an interface is tried out. `help()` lists the commands.
///
/// While it waits it prints "received CODE" for each message, and obeys the order to suspend (code
/// 11: it reports its end and exits) unless told to ignore it.
class FakeTool {
 public:
  /// `daemon`: whom to talk to; 0 for nobody.
  explicit FakeTool(std::int32_t daemon) : daemon_(daemon) {}

  /// Does one command; false, with `error` saying why, when it can't be understood.
  bool obey(std::string_view command, std::string& error);
  /// Status to exit with, set by "exit" or an order to suspend.
  bool over() const { return over_; }
  bool hasDaemon() const { return daemon_ > 0; }
  int exitStatus() const { return exitStatus_; }

  static std::string help();

 private:
  using Words = std::vector<std::string>;
  struct Command;
  static const std::vector<Command>& commands();

  bool plain(std::int32_t code);
  bool withText(std::int32_t code, const std::string& text);
  bool finished(const std::string& text);
  bool error(const Words& words);
  bool sendItems(const Words& words, bool counted);
  bool flood(const Words& words);
  bool wait(const Words& words);
  bool await(const Words& words);
  bool keep(const Words& words);
  bool ignore(const Words& words);
  bool die(const Words& words);
  bool end(const Words& words);
  bool lock(const Words& words);
  bool status(const Words& words);
  bool file(const Words& words);
  bool argumentsTo(const Words& words);
  bool processId(const Words& words);
  bool values(const Words& words);
  void send(std::int32_t code) const;
  /// Tag of the next message within `seconds`, 0 for none.
  std::int32_t receive(std::int32_t tag, double seconds);

  std::int32_t daemon_;
  bool ignoresSuspend_ = false;
  bool over_ = false;
  int exitStatus_ = 0;
  std::unique_ptr<TLLockFile> lock_;
};
