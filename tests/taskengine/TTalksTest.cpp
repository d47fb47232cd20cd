#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

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

/// Its title as a name of a test.
std::string nameOf(const Talk& talk) {
  std::string name = talk.title;
  std::erase(name, ',');
  std::replace_if(
      name.begin(), name.end(), [](char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

void PrintTo(const Talk& talk, std::ostream* out) {
  *out << nameOf(talk);
}

std::vector<Talk> talks() {
  std::vector<Talk> all;
  for (const auto& file : std::filesystem::directory_iterator(TL_TALKS)) {
    std::ifstream in(file.path());
    for (std::string line; std::getline(in, line);) {
      if (line.starts_with("= ")) {
        all.push_back({line.substr(2), {}});
      } else if (!line.empty()) {
        all.back().lines.push_back(line);
      }
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
    std::string value;
    const auto number = [&] { return std::stoi(value); };
    const std::map<std::string, std::function<void()>> options = {
        {"run",
         [&] {
           step.status = TLSubTask::Running;
           std::istringstream tids(value);
           for (std::string tid; std::getline(tids, tid, ',');) {
             step.children.push_back(std::stoi(tid));
           }
         }},
        {"queue", [&] { step.loadBalancing.queuingSystemActivated = number(); }},
        {"parallel", [&] { step.loadBalancing.parallel = 1; }},
        {"beside", [&] { step.waitingTask = 0; }},
        {"never", [&] { step.waitingTask = 2; }},
        {"disabled", [&] { step.enabled = 0; }},
        {"ended", [&] { step.finishMessage.tag = number(); }},
        {"error", [&] { step.errorLines.addString(value); }},
        {"run-file", [&] { argument(step, "none", value); }},
        {"semaphore", [&] { step.processIds.push_back(number()); }},
        {"host", [&] { step.hostName = value; }},
        {"tmp", [&] { step.remoteTmpDir = value; }},
        {"fails", [&] { launcher.results[step.name] = number(); }},
    };
    for (std::size_t i = 3; i < words.size(); ++i) {
      const std::string key = words[i].substr(0, words[i].find(':'));
      value = words[i].substr(std::min(words[i].size(), key.size() + 1));
      options.at(key)();
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
    const auto number = [&](std::size_t i) { return std::stoi(words.at(i)); };
    const std::map<std::string, std::function<void()>> events = {
        {"step", [&] { addStep(words); }},
        {"gone", [&] { isGone(number(1), words.size() > 2 ? number(2) : kGone); }},
        {"parent", [&] { stepOf(words.at(1))->addParent(number(2)); }},
        {"confirmed", [] { gLaunchConfirmed = 1; }},
        {"suspended", [] { gSuspendRequested = 1; }},
        {"arrives", [&] { arrive(words); }},
        {"cycle", [&] { task->superviseOnce(); }},
        {"walk", [&] { task->launchDueSubTasks(wasRunning_); }},
    };
    const std::string& what = words.front();
    const auto event = events.find(what);
    if (event != events.end()) return event->second();
    const auto at = what.find('@');
    const std::int32_t fromStep = at == what.npos ? 7 : std::stoi(what.substr(at + 1));
    TLProcessMessage made = messageOf(words, what == "task" ? 900 : fromStep);
    what == "task" ? task->handleMessage(made) : stepOf(what.substr(0, at))->handleMessage(made);
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

INSTANTIATE_TEST_SUITE_P(Talks, TalkTest, testing::ValuesIn(talks()),
                         [](const auto& info) { return nameOf(info.param); });

}  // namespace
