#include <filesystem>
#include <fstream>

#include "TEngineTest.h"

namespace {

/// One case of the files in talks/: what happens to a task, line by line, and behind each line that
/// makes something happen all that comes of it (the lines with ">", none for nothing):
///     step A velstra run:7,8 ...   a step, its program and more, see addStep
///     gone 7 -14, parent A 600     what the virtual machine answers of a process; a further parent
///     confirmed, suspended         the marks of the process
///     arrives 7 28 1               a message lies there: source, tag, integers and 'texts'
///     task 2 -1, A 5 'why'         the task, or a step, handles a message (from 900, or 7; "A@99")
///     walk, cycle                  the engine looks for what is due; a whole cycle
/// What comes of it: "said", "sent" (to:tag and contents), "do" (the launcher), "kill", "is" (a new
/// status of a step), "exit".
struct Talk {
  std::string title;
  std::vector<std::string> lines;
};

std::vector<Talk> talks() {
  std::vector<Talk> all;
  for (const auto& file : std::filesystem::directory_iterator(TL_TALKS)) {
    std::ifstream in(file.path());
    for (std::string line; std::getline(in, line);) {
      if (line.starts_with("= "))
        all.push_back({line.substr(2), {}});
      else if (!line.empty())
        all.back().lines.push_back(line);
    }
  }
  return all;
}

/// The words of a line; a text in quotes is one, with its opening quote.
std::vector<std::string> wordsOf(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream in(line);
  for (std::string word; in >> word;) {
    if (word.front() == '\'') {
      while (word.size() == 1 || word.back() != '\'') word += static_cast<char>(in.get());
      word.pop_back();
    }
    words.push_back(word);
  }
  return words;
}

class TalkTest : public TEngineTest, public testing::WithParamInterface<Talk> {
 protected:
  using Words = std::vector<std::string>;

  void addStep(const Words& words) {
    TLSubTask& step = add(words.at(1), words.at(2));
    for (std::size_t i = 3; i < words.size(); ++i) {
      const std::string key = words[i].substr(0, words[i].find(':'));
      const std::string value = words[i].substr(std::min(words[i].size(), key.size() + 1));
      if (key == "run") {
        step.status = TLSubTask::Running;
        std::istringstream tids(value);
        for (std::string tid; std::getline(tids, tid, ',');)
          step.children.push_back(std::stoi(tid));
      }
      if (key == "status") step.status = std::stoi(value);
      if (key == "queue") step.loadBalancing.queuingSystemActivated = std::stoi(value);
      if (key == "parallel") step.loadBalancing.parallel = 1;
      if (key == "beside") step.waitingTask = 0;
      if (key == "never") step.waitingTask = 2;
      if (key == "disabled") step.enabled = 0;
      if (key == "ended") step.finishMessage.tag = std::stoi(value);
      if (key == "error") step.errorLines.addString(value);
      if (key == "run-file") argument(step, "none", value);
      if (key == "host") step.hostName = value;
      if (key == "tmp") step.remoteTmpDir = value;
      if (key == "fails") launcher.results[step.name] = std::stoi(value);
    }
    statuses_ = statuses();
  }

  template <class AddText, class AddInteger>
  static void items(const Words& words, std::size_t from, AddText addText, AddInteger addInteger) {
    for (std::size_t i = from; i < words.size(); ++i) {
      words[i].front() == '\'' ? addText(words[i].substr(1)) : addInteger(std::stoi(words[i]));
    }
  }
  TLProcessMessage messageOf(const Words& words, std::int32_t source) {
    TLProcessMessage made = message(std::stoi(words.at(1)), source);
    items(
        words, 2, [&](const auto& text) { made.addString(text); },
        [&](std::int32_t value) { made.addInteger(value); });
    return made;
  }
  void arrive(const Words& words) {
    TLWireBuffer& body = vm.arrives(std::stoi(words.at(1)), std::stoi(words.at(2)));
    body.integer(static_cast<std::int32_t>(words.size()) - 3);
    items(
        words, 3, [&](const auto& text) { body.integer(7).counted(text); },
        [&](std::int32_t value) { body.integer(1).integer(value); });
  }
  TLSubTask* stepOf(const std::string& name) {
    for (const auto& step : task->subTasks) {
      if (step->name == name) return step.get();
    }
    ADD_FAILURE() << "no step " << name;
    return nullptr;
  }

  void play(const Words& words) {
    const std::string& what = words.front();
    if (what == "step")
      addStep(words);
    else if (what == "gone")
      isGone(std::stoi(words.at(1)), words.size() > 2 ? std::stoi(words[2]) : kGone);
    else if (what == "parent")
      stepOf(words.at(1))->addParent(std::stoi(words.at(2)));
    else if (what == "confirmed")
      gLaunchConfirmed = 1;
    else if (what == "suspended")
      gSuspendRequested = 1;
    else if (what == "arrives")
      arrive(words);
    else if (what == "cycle")
      task->superviseOnce();
    else if (what == "walk")
      task->launchDueSubTasks(wasRunning_);
    else if (what == "task") {
      TLProcessMessage made = messageOf(words, 900);
      task->handleMessage(made);
    } else {
      const auto at = what.find('@');
      TLProcessMessage made =
          messageOf(words, at == what.npos ? 7 : std::stoi(what.substr(at + 1)));
      stepOf(what.substr(0, at))->handleMessage(made);
    }
  }

  /// What came of the last line.
  Lines effects() {
    Lines all;
    for (const auto& line : said()) all.push_back("said " + line);
    for (const auto& line : sent()) all.push_back("sent " + line);
    for (const auto& line : launched()) all.push_back("do " + line);
    for (const auto tid : std::exchange(vm.kills, {})) all.push_back("kill " + std::to_string(tid));
    const auto now = statuses();
    for (std::size_t i = 0; i < now.size(); ++i) {
      if (now[i] != statuses_[i]) {
        all.push_back(task->subTasks[i]->name + " is " + std::to_string(now[i]));
      }
    }
    statuses_ = now;
    if (std::exchange(exits_, 0) != 0) all.emplace_back("exit");
    return all;
  }

  std::vector<std::int32_t> statuses_;
  std::vector<std::int32_t> wasRunning_;
};

TEST_P(TalkTest, GoesAsWritten) {
  const auto& lines = GetParam().lines;
  for (std::size_t i = 0; i < lines.size();) {
    const std::string& event = lines[i++];
    play(wordsOf(event));
    Lines expected;
    for (; i < lines.size() && lines[i].front() == '>'; ++i) expected.push_back(lines[i].substr(2));
    EXPECT_EQ(effects(), expected) << event << "\nof: " << GetParam().title;
  }
}

INSTANTIATE_TEST_SUITE_P(Talks, TalkTest, testing::ValuesIn(talks()));

}  // namespace
