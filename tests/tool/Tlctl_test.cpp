// tlctl as a user runs it: the installed program, its own virtual machine, real daemons and tools.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <tuple>

#include "integration/Waiting.h"
#include "platform/TLProcess.h"
#include "platform/TTempDir.h"
#include "support/Definitions.h"
#include "support/TaskText.h"

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

class Tlctl : public ::testing::Test {
 protected:
  struct Answer {
    int code = -1;
    std::string text;
  };

  Tlctl() {
    fs::create_directories(directory_ / "tools");
    const std::string install = std::string("cmake --install ") + TL_BUILD_DIR + " --prefix " +
                                (directory_ / "suite").string() + " > /dev/null";
    EXPECT_EQ(std::system(install.c_str()), 0);
    environment_ = {{"HOME", directory_},
                    {"PVM_TMP", directory_ / "home-pvm"},
                    {"PVM_VMID", directory_.filename()},
                    {"TL_UPDATE_MS", "20"},
                    {"NO_COLOR", "1"}};
    fs::create_directory(directory_ / "home-pvm");
  }

  ~Tlctl() override { endVirtualMachine(); }

  // What a run that was left to itself still holds.
  void endVirtualMachine() const {
    for (const auto& entry : fs::directory_iterator("/proc")) {
      const std::string name = entry.path().filename();
      if (name.find_first_not_of("0123456789") != std::string::npos) continue;
      if (contentsOf(entry.path() / "environ").find(directory_.string()) != std::string::npos) {
        requestProcessEnd(std::stoi(name));
      }
    }
  }

  std::optional<TLProcess> start(std::vector<std::string> words, const fs::path& output) const {
    words.insert(words.begin(), directory_ / "suite/mire71/bin/tlctl");
    std::string error;
    TLProcessOptions options;
    options.environment = environment_;
    options.outputFile = output;
    auto process = TLProcess::start(words, options, error);
    EXPECT_TRUE(process) << error;
    return process;
  }

  Answer run(const std::vector<std::string>& words) const {
    const fs::path output = directory_ / "output";
    fs::remove(output);
    auto process = start(words, output);
    waitUntil([&] { return !process->running(); });
    return {process->exitCode().value_or(-1), contentsOf(output)};
  }

  static std::string hostName() {
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    return host;
  }

  // A step that does `commands` under the name of the program `executable`.
  std::string step(const std::string& name, const std::string& executable,
                   const std::vector<std::string>& commands,
                   const std::string& further = {}) const {
    const fs::path tool = directory_ / "tools" / executable;
    if (!fs::exists(tool)) fs::create_symlink(TL_FAKETOOL, tool);
    std::string arguments;
    for (const auto& command : commands) arguments += argumentText("-do", command);
    return stepText(name, executable, hostName(), argumentsText(arguments + further));
  }

  std::string writeTask(const std::string& steps) const {
    const fs::path path = directory_ / "some task.task";
    std::ofstream(path) << "NAME some task\n" << steps << "TL_END task\n";
    return path;
  }

  TTempDir files_;
  const fs::path directory_ = files_.path();
  std::map<std::string, std::string> environment_;
};

TEST_F(Tlctl, RunsATaskToItsEndAndLeavesNothingBehind) {
  const std::string task =
      writeTask(step("MESH", "meshtool", {"exit 0"}) +
                step("SOLVE", "velstraTurbo", {"started", "finished all is well"}) +
                step("PICTURE", "picturetool", {"exit 0"}));
  const Answer answer = run({"run", "--tools", directory_ / "tools", "--interval", "50", task});
  EXPECT_EQ(answer.code, 0) << answer.text;
  EXPECT_THAT(answer.text, HasSubstr("step 1 SOLVE: all is well"));
  EXPECT_THAT(answer.text, HasSubstr("   2  PICTURE  finished ok"));
  EXPECT_EQ(run({"list"}).text, "");
  EXPECT_TRUE(waitUntil([&] {
    return fs::is_empty(directory_ / "home-pvm") ||
           !fs::exists(directory_ / "home-pvm" /
                       ("pvmd." + std::to_string(getuid()) + "." + directory_.filename().string()));
  }));
}

TEST_F(Tlctl, TellsWhyAStepDied) {
  const std::string task =
      writeTask(step("SOLVE", "velstraTurbo",
                     {"started", "error negative volume", "print last words", "die SEGV"}));
  const Answer answer = run({"run", "--tools", directory_ / "tools", "--interval", "50", task});
  EXPECT_EQ(answer.code, 1);
  EXPECT_THAT(answer.text, HasSubstr("SOLVE: negative volume"));
  EXPECT_THAT(answer.text, HasSubstr("0 of 1 steps finished ok, 1 crashed"));
  EXPECT_THAT(answer.text, HasSubstr("ended by signal 11 (SIGSEGV, bad memory access) on host"));
  const auto log = answer.text.rfind("; log: ");
  ASSERT_NE(log, std::string::npos) << answer.text;
  const std::string path = answer.text.substr(log + 7, answer.text.find('\n', log) - log - 7);
  EXPECT_THAT(contentsOf(path), HasSubstr("last words")) << "kept for later";
  EXPECT_EQ(run({"report", "nothing", "-o", directory_ / "page"}).code, 3);
  EXPECT_EQ(run({"report", "some task", "-o", directory_ / "page"}).code, 0);
  const std::string page = contentsOf(directory_ / "page");
  EXPECT_THAT(page, HasSubstr("SOLVE  last words"));
  EXPECT_THAT(page, HasSubstr("<pre>negative volume\n</pre>"));
}

TEST_F(Tlctl, TalksToADaemonThatWasLeft) {
  const std::string task =
      writeTask(step("SOLVE", "velstraTurbo", {"started", "wait 120", "exit 0"}) +
                step("NEXT", "nexttool", {"exit 0"}));
  const fs::path output = directory_ / "run-output";
  auto following =
      start({"run", "--tools", directory_ / "tools", "--interval", "50", task}, output);
  ASSERT_TRUE(waitUntil([&] {
    return contentsOf(output).find("SOLVE: running") != std::string::npos;
  })) << contentsOf(output);
  following->terminate();
  EXPECT_EQ(following->exitCode(), 0);
  EXPECT_THAT(contentsOf(output), HasSubstr("tlctl attach"));

  const auto status = nlohmann::json::parse(run({"status", task, "--json"}).text);
  EXPECT_EQ(status["version"], 1);
  EXPECT_EQ(status["task"], "some task");
  EXPECT_EQ(status["steps"][0]["word"], "running");
  EXPECT_EQ(status["steps"][1]["word"], "pending");

  EXPECT_EQ(run({"stop", "--step", "7"}).code, 2);
  EXPECT_THAT(run({"stop", "--step", "OTHER"}).text, HasSubstr("has 0 SOLVE, 1 NEXT"));
  EXPECT_THAT(run({"stop", "--step", "NEXT"}).text, HasSubstr("step 1: stopped: never started"));
  EXPECT_EQ(run({"stop"}).code, 0);
  EXPECT_THAT(run({"status"}).text, HasSubstr("stopped"));
  EXPECT_EQ(run({"attach", "some task"}).code, 1);
  EXPECT_EQ(run({"exit"}).code, 0);
  EXPECT_EQ(run({"status"}).code, 3);
}

// What a program shows on a terminal of its own.
class Terminal {
 public:
  Terminal(const std::vector<std::string>& words,
           const std::map<std::string, std::string>& environment, int rows, int columns) {
    const winsize size = sizeOf(rows, columns);
    pid_ = forkpty(&descriptor_, nullptr, nullptr, &size);
    if (pid_ == 0) {
      for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
      std::vector<char*> argv;
      for (const auto& word : words) argv.push_back(const_cast<char*>(word.c_str()));
      argv.push_back(nullptr);
      execv(argv[0], argv.data());
      _exit(127);
    }
    fcntl(descriptor_, F_SETFL, O_NONBLOCK);
  }
  ~Terminal() {
    if (pid_ > 0 && !ended()) kill(pid_, SIGKILL);
    close(descriptor_);
  }

  void press(char key) const { EXPECT_EQ(write(descriptor_, &key, 1), 1); }
  void resize(int rows, int columns) {
    const winsize size = sizeOf(rows, columns);
    ioctl(descriptor_, TIOCSWINSZ, &size);
    text_.clear();
  }
  // All that was shown since the start, or since it was resized.
  const std::string& text() {
    char buffer[4096];
    for (ssize_t n = 0; (n = read(descriptor_, buffer, sizeof buffer)) > 0;) {
      text_.append(buffer, static_cast<std::size_t>(n));
    }
    return text_;
  }
  bool ended() { return code_ >= 0 || waitpid(pid_, &code_, WNOHANG) == pid_; }
  int code() const { return code_; }

 private:
  static winsize sizeOf(int rows, int columns) {
    return {static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
  }

  pid_t pid_ = -1;
  int descriptor_ = -1;
  int code_ = -1;
  std::string text_;
};

TEST_F(Tlctl, KeepsALineForEachStepOnATerminal) {
  const fs::path steering = directory_ / "some.steering";
  std::ofstream(steering) << " VERSION 1.0\n TL_BEGIN TL_steering_parameter\n  VERSION 2.0\n"
                             "  NAME rms\n TL_END TL_steering_parameter\n";
  std::ofstream(steering.string() + ".binary");
  const std::string solver =
      step("SOLVE", "velstraTurbo",
           {"started", "text reading \x1b[31mthe mesh", "values rms 1 1 250 0.01", "wait 120"},
           argumentText("-iterations", "1000") + argumentText("-steering", steering.string()));
  const std::string task = writeTask(solver + step("NEXT", "nexttool", {"exit 0"}));
  auto environment = environment_;
  environment["TERM"] = "xterm";
  Terminal terminal({directory_ / "suite/mire71/bin/tlctl", "run", "--tools", directory_ / "tools",
                     "--interval", "50", task},
                    environment, 30, 120);
  const auto shows = [&](const char* text) {
    return waitUntil([&] { return terminal.text().find(text) != std::string::npos; });
  };
  EXPECT_TRUE(
      shows("iteration 250 of 1000 (25 %), rms 1.00e-02 (2.0 orders down)  reading  [31mthe"))
      << terminal.text();
  EXPECT_TRUE(shows("\u25CB NEXT  pending")) << terminal.text();
  terminal.press('p');
  EXPECT_TRUE(shows("1.0e-02 |")) << terminal.text();
  terminal.resize(30, 40);
  EXPECT_TRUE(shows("\u25B6 SOLVE running")) << terminal.text();
  terminal.resize(30, 40);  // what follows is all of that size
  EXPECT_TRUE(shows("NEXT")) << terminal.text();
  std::istringstream lines(terminal.text());
  for (std::string line; std::getline(lines, line);) {
    const auto continued = [](unsigned char c) { return (c & 0xC0U) == 0x80U; };
    line.erase(0, line.find("\x1b[J") == std::string::npos ? 0 : line.find("\x1b[J") + 3);
    EXPECT_LE(static_cast<long>(line.size()) - std::ranges::count_if(line, continued), 40) << line;
  }
  terminal.press('q');
  EXPECT_TRUE(waitUntil([&] { return terminal.ended(); }));
  EXPECT_EQ(terminal.code(), 0);
  EXPECT_THAT(terminal.text(), HasSubstr("tlctl attach"));
  EXPECT_EQ(run({"stop"}).code, 0);
  EXPECT_EQ(run({"exit"}).code, 0);
}

TEST_F(Tlctl, AnswersWrongUseWithTwoAndNobodyThereWithThree) {
  EXPECT_EQ(run({}).code, 2);
  const Answer typo = run({"stauts"});
  EXPECT_EQ(typo.code, 2);
  EXPECT_THAT(typo.text, HasSubstr("there is no command \"stauts\""));
  EXPECT_THAT(run({"status", "--jsno"}).text, HasSubstr("was \"--json\" meant"));
  EXPECT_EQ(run({"save"}).code, 2);
  for (const char* command : {"status", "stop", "exit", "attach", "replay", "suspend", "watch"}) {
    EXPECT_EQ(run({command}).code, 3) << command;
  }
  EXPECT_EQ(run({"run", directory_ / "none.task"}).code, 1);
  EXPECT_EQ(run({"--help"}).code, 0);
}

TEST_F(Tlctl, ChecksAndPlansJobScripts) {
  const std::string runFile = (directory_ / "duct.run").string();
  const std::string task =
      writeTask(stepText("TOOL", "tool", hostName(),
                         "  TL_BEGIN load_balancing\n    QUEUING_SYSTEM_ACTIVATED 2\n"
                         "    QUEUING_SYSTEM_QUEUE mpi\n  TL_END load_balancing\n" +
                             argumentsText(argumentText("none", runFile))));
  const std::string missing = "The template of the job script, " +
                              (directory_ / "duct.pbs").string() + ", can't be read: put one";
  for (const char* command : {"check", "plan"}) {
    const Answer answer = run({command, task});
    EXPECT_EQ(answer.code, 1) << command;
    EXPECT_THAT(answer.text, HasSubstr(missing)) << command;
  }
  std::ofstream(directory_ / "duct.pbs") << "#!/bin/sh\n\n# COMPUTATION SETTINGS\n";
  EXPECT_EQ(run({"check", task}).code, 0);
  const Answer plan = run({"plan", task});
  EXPECT_EQ(plan.code, 0);
  EXPECT_THAT(plan.text, HasSubstr("  submits   qsub -C \\#PBS  " + directory_.string()));
  EXPECT_THAT(plan.text, HasSubstr("  script    #PBS -N compNNN\n"));
  EXPECT_THAT(plan.text, HasSubstr("  script    RUN_FILE=" + runFile + "\n"));
  EXPECT_EQ(contentsOf(directory_ / "duct.pbs"), "#!/bin/sh\n\n# COMPUTATION SETTINGS\n");
}

TEST_F(Tlctl, ShowsDefinitionsAndConvertsWithTheirUnits) {
  const Definitions definitions;
  environment_.emplace("VELSTRA_DIR", definitions.directory());
  const std::vector<std::tuple<std::vector<std::string>, int, std::string>> cases = {
      {{"show", definitions.directory() + "/velstra.uni"}, 0, "units file\n  length  m, cm,"},
      {{"show", definitions.directory() + "/velstra.def"}, 0, "    TINF,R,1,1,0    288\n"},
      {{"show", definitions.directory() + "/velstra_bc.def"}, 0, "    id 28, option 1  INLET"},
      {{"show", definitions.directory()}, 1, "cannot be opened"},
      {{"units", "25.4", "mm", "m", "--quantity", "length"}, 0, "0.0254 m\n"},
      {{"units", "25.4", "1", "0", "--quantity", "length", "--json"}, 0, "\"result\": 0.254,"},
      {{"units", "1", "mx", "m", "--quantity", "length"}, 1, "\"mx\" is no unit of length; there"},
      {{"units", "1", "m", "9", "--quantity", "length"}, 1, "\"9\" is no unit of length"},
      {{"units", "1", "m", "m", "--quantity", "lenth"}, 1, "no quantity \"lenth\"; there are:"},
  };
  for (const auto& [words, code, text] : cases) {
    const Answer answer = run(words);
    EXPECT_EQ(answer.code, code) << words.back();
    EXPECT_THAT(answer.text, HasSubstr(text)) << words.back();
  }
}

TEST_F(Tlctl, ChecksAndRewritesATaskFile) {
  const std::string task = writeTask(step("A", "tool", {"exit 0"}));
  EXPECT_THAT(run({"check", task}).text, HasSubstr("step 0  A"));
  const fs::path once = directory_ / "once";
  const fs::path twice = directory_ / "twice";
  EXPECT_EQ(run({"rewrite", "task", task, once}).code, 0);
  EXPECT_EQ(run({"rewrite", "task", once, twice}).code, 0);
  EXPECT_EQ(contentsOf(once), contentsOf(twice));
  EXPECT_THAT(run({"check", once}).text, Not(HasSubstr("warning: no key"))) << "written by us";
  std::ofstream(task) << "NAME a\nSTATUS\n";
  const Answer refused = run({"rewrite", "task", task, once});
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.text, HasSubstr("  wrong format for4: STATUS\n"));
  EXPECT_EQ(contentsOf(once), contentsOf(twice)) << "a file is replaced only by a complete one";
  std::ofstream(task) << "NAME a\r\nTL_BEGIN subtask\r\nTL_END subtask\r\n";
  EXPECT_THAT(run({"check", task}).text, HasSubstr("warning: its lines end in carriage returns"));
  EXPECT_EQ(run({"rewrite", "task", task, once}).code, 1);
  EXPECT_EQ(contentsOf(once), contentsOf(twice)) << "nothing that isn't recognised is lost";
}

TEST_F(Tlctl, SteersASolverAndWatchesItsResiduals) {
  const fs::path file = directory_ / "some.steering";
  std::ofstream(file) << " VERSION 1.0\n"
                         " TL_BEGIN TL_steering_parameter\n  VERSION 2.0\n  NAME rms\n"
                         "\t\t\t\tREAL_ENTRY\t\tcourant number\t\t1.5\n"
                         " TL_END TL_steering_parameter\n";
  EXPECT_THAT(run({"plot", file, "-o", directory_ / "a.png"}).text, HasSubstr("some.steering.bin"));
  std::ofstream(file.string() + ".binary");
  EXPECT_THAT(run({"plot", file, "-o", directory_ / "a.png"}).text, HasSubstr("holds no values"));
  const std::string solver = step("SOLVE", "velstraTurbo",
                                  {"started", "ask", "await 12 60", "values rms 1 0.5 2 0.25",
                                   "await 12 60", "values rms 3 0.125", "wait 60"},
                                  argumentText("-steering", file.string()));
  const std::string task = writeTask(solver);
  ASSERT_EQ(run({"start", "--tools", directory_ / "tools", task}).code, 0);
  const fs::path output = directory_ / "watched";
  auto watching = start({"watch", "--interval", "20", task}, output);
  EXPECT_TRUE(waitUntil([&] {
    return contentsOf(output).find("iteration 2: rms 0.25") != std::string::npos;
  })) << contentsOf(output);

  EXPECT_EQ(run({"steer", task, "list"}).text, "rms\treal\t1.5\n");
  EXPECT_EQ(run({"steer", task, "set", "rms", "fast"}).code, 2);
  EXPECT_EQ(run({"steer", task, "set", "rsm", "1"}).code, 2);
  EXPECT_EQ(run({"steer", task, "set", "rms"}).code, 2);
  EXPECT_EQ(run({"steer", task, "get", "courant number"}).text, "1.5\n");
  EXPECT_EQ(run({"steer", task, "set", "rms", "-0.25"}).text, "rms\t-0.25\n");
  EXPECT_TRUE(waitUntil([&] {
    return contentsOf(output).find("iteration 3: rms 0.125") != std::string::npos;
  })) << contentsOf(output);
  EXPECT_EQ(run({"steer", task, "get", "rms"}).text, "-0.25\n") << "in the file, too";
  EXPECT_EQ(run({"stop"}).code, 0);
  EXPECT_TRUE(waitUntil([&] { return !watching->running(); }));
  EXPECT_EQ(run({"exit"}).code, 0);
  EXPECT_EQ(run({"steer", task, "list"}).code, 3);
  const fs::path copy = directory_ / "copy.steering";
  EXPECT_EQ(run({"rewrite", "steering", file, copy}).code, 0);
  EXPECT_THAT(contentsOf(copy), HasSubstr("courant number"));
  EXPECT_EQ(contentsOf(copy.string() + ".binary"), "");
  fs::remove(copy.string() + ".binary");
  EXPECT_THAT(run({"rewrite", "steering", copy, file}).text,
              HasSubstr("ERROR: file: " + copy.string() + ".binary does not exist\n"));
}

}  // namespace
