// A tool that does as it is told; link it under any program name that a task file may hold.
#include <pvm3.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "FakeTool.h"

namespace {

constexpr const char* kUsage =
    "usage: tlfaketool [-do COMMAND]... [-script FILE]... [any other words]\n"
    "Does the commands in their order, then exits with 0. Without any, the file NAME.fake in the\n"
    "directory $TL_FAKE_SCRIPTS is the script, NAME being the name that it was started under; and\n"
    "without that: started, wait 1, finished. Commands, one to a -do or a line of a script:\n";

bool readScript(const std::string& file, std::vector<std::string>& commands) {
  std::ifstream in(file);
  if (!in) return false;
  for (std::string line; std::getline(in, line);) commands.push_back(line);
  return true;
}

std::vector<std::string> defaultCommands(const char* program) {
  std::vector<std::string> commands;
  const char* directory = std::getenv("TL_FAKE_SCRIPTS");
  const char* slash = std::strrchr(program, '/');
  const std::string name = slash == nullptr ? program : slash + 1;
  if (directory != nullptr && readScript(std::string(directory) + "/" + name + ".fake", commands)) {
    return commands;
  }
  return {"started", "wait 1", "finished"};
}

std::int32_t findDaemon(int argc, char** argv) {
  std::int32_t named = 0;
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "-parendId") == 0) named = std::atoi(argv[i + 1]);
  }
  if (named == 0 && std::getenv("PVMEPID") == nullptr) return 0;
  if (pvm_mytid() < 0) return 0;
  return named > 0 ? named : pvm_parent();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> commands;
  bool given = false;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--help" || word == "-h") {
      std::printf("%s%s", kUsage, FakeTool::help().c_str());
      return 0;
    }
    if (i + 1 >= argc || (word != "-do" && word != "-script")) continue;
    given = true;
    ++i;
    if (word == "-do") {
      commands.emplace_back(argv[i]);
    } else if (!readScript(argv[i], commands)) {
      std::fprintf(stderr, "tlfaketool: cannot read the script %s\n", argv[i]);
      return 2;
    }
  }
  if (!given) commands = defaultCommands(argv[0]);

  FakeTool tool(findDaemon(argc, argv));
  for (const auto& command : commands) {
    std::string error;
    if (!tool.obey(command, error)) {
      std::fprintf(stderr, "tlfaketool: %s\n", error.c_str());
      return 2;
    }
    if (tool.over()) break;
  }
  if (tool.hasDaemon()) pvm_exit();  // waits until all that was sent has left
  return tool.exitStatus();
}
