#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

/// One command of tlctl: its place on the command line and what it does.
struct TLCommand {
  std::string_view name;                   ///< What the user types.
  std::string_view summary;                ///< One line for the list of commands.
  std::vector<std::string_view> examples;  ///< shown first by --help
  /// Declares the command's options on `app` and answers what runs it, with one of TLExitCode.
  std::function<std::function<int()>(CLI::App& app)> define;
};

/// tlctl's main: parses `argv`, runs one command, answers the exit code.
int runTool(int argc, char** argv);
