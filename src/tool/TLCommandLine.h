#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tool/TLCommand.h"

/// The command line of tlctl: every command with its options, as one parser. Whoever needs to know
/// what there is (help, completions, manual pages, tests) asks app() or commands().
class TLCommandLine {
 public:
  TLCommandLine();
  TLCommandLine(const TLCommandLine&) = delete;
  TLCommandLine& operator=(const TLCommandLine&) = delete;

  /// Parses the words of a command line and runs the command that they name; one of TLExitCode.
  /// What is wrong with the words is said on standard error, with what was probably meant.
  int run(int argc, const char* const* argv);
  /// Parses alone: none when all is well, else the exit code; everything has been said then.
  std::optional<int> parse(int argc, const char* const* argv);

  /// The parser, with all commands; lives as long as this object.
  CLI::App& app() { return *app_; }
  /// In the order of the help.
  const std::vector<TLCommand>& commands() const { return commands_; }

 private:
  int refuse(const CLI::ParseError& error, int argc, const char* const* argv) const;
  std::string commandHint(const std::string& word) const;

  std::vector<TLCommand> commands_;
  std::unique_ptr<CLI::App> app_;
  std::function<int()> chosen_;
};
