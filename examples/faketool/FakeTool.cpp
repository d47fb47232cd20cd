#include "FakeTool.h"

#include <pvm3.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <map>
#include <thread>

#include "taskengine/TLStatusFile.h"
#include "textio/TLTokens.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t kSuspend = 11;
constexpr double kAnswerSeconds = 10.0;
constexpr double kKeepSeconds = 60.0;

void packInt(std::int32_t value) {
  pvm_pkint(&value, 1, 1);
}
void packString(const std::string& text) {
  pvm_pkstr(const_cast<char*>(text.c_str()));
}

// One item of a message as it is written in a command: its kind, a colon, its value.
struct Item {
  char kind;
  std::string value;
};

bool itemFrom(const std::string& word, Item& item) {
  if (word.size() < 2 || word[1] != ':') return false;
  item = {word[0], word.substr(2)};
  return std::string_view("ifdsS").find(item.kind) != std::string_view::npos;
}

void packItem(const Item& item, bool typed) {
  const auto type = [typed](std::int32_t code) {
    if (typed) packInt(code);
  };
  float real32 = 0;
  double real64 = 0;
  switch (item.kind) {
    case 'i':
      type(1);
      packInt(std::atoi(item.value.c_str()));
      break;
    case 'f':
      type(2);
      real32 = static_cast<float>(std::atof(item.value.c_str()));
      pvm_pkfloat(&real32, 1, 1);
      break;
    case 'd':
      type(3);
      real64 = std::atof(item.value.c_str());
      pvm_pkdouble(&real64, 1, 1);
      break;
    case 's':
      type(7);
      packInt(static_cast<std::int32_t>(item.value.size()));
      [[fallthrough]];
    default:
      packString(item.value);
  }
}

int signalFrom(const std::string& word) {
  static const std::map<std::string, int> names = {
      {"ABRT", SIGABRT}, {"BUS", SIGBUS},   {"FPE", SIGFPE},   {"HUP", SIGHUP},  {"ILL", SIGILL},
      {"INT", SIGINT},   {"KILL", SIGKILL}, {"SEGV", SIGSEGV}, {"TERM", SIGTERM}};
  const auto name = names.find(word);
  return name != names.end() ? name->second : std::atoi(word.c_str());
}

}  // namespace

// Name, how it is used, the number of words that it needs and whether the last takes the rest of
// the line, what it does.
struct FakeTool::Command {
  std::string_view name;
  std::string_view usage;
  std::size_t words;
  bool rest;
  std::function<bool(FakeTool&, const Words&)> action;
};

const std::vector<FakeTool::Command>& FakeTool::commands() {
  static const std::vector<Command> table = {
      {"started", "started                 message 4: a solver is up", 0, false,
       [](FakeTool& t, const Words&) { return t.plain(4); }},
      {"text", "text LINE               message 7: for the user's eyes", 1, true,
       [](FakeTool& t, const Words& w) { return t.withText(7, w[0]); }},
      {"error", "error LINE              message 8, and waits for its answer", 1, true,
       [](FakeTool& t, const Words& w) { return t.error(w); }},
      {"finished", "finished [LINE]         message 5, and waits for it to be passed back", 0, true,
       [](FakeTool& t, const Words& w) { return t.finished(w.empty() ? "" : w[0]); }},
      {"ask", "ask                     message 14: wants the steering settings", 0, false,
       [](FakeTool& t, const Words&) { return t.plain(14); }},
      {"reset", "reset                   message 15: has reset its steering", 0, false,
       [](FakeTool& t, const Words&) { return t.plain(15); }},
      {"values", "values NAME X Y ...     message 13 with one residual series", 3, false,
       [](FakeTool& t, const Words& w) { return t.values(w); }},
      {"child", "child TID               message 28: TID belongs to this step", 1, false,
       [](FakeTool& t, const Words& w) {
         return t.sendItems({"28", "i:" + w[0]}, true);
       }},
      {"process", "process FILE.run [N]    message 20 with FILE.run and N (own process id)", 1,
       false, [](FakeTool& t, const Words& w) { return t.processId(w); }},
      {"reconnect",
       "reconnect TID WORDS     message 9 with WORDS to the daemon TID, kept from now on", 2, false,
       [](FakeTool& t, const Words& w) { return t.argumentsTo(w); }},
      {"send", "send CODE [ITEMS]       any message; items i:1 f:1.5 d:1.5 s:word", 1, false,
       [](FakeTool& t, const Words& w) { return t.sendItems(w, true); }},
      {"raw", "raw CODE [ITEMS]        items without count and types (S: a bare PVM string)", 1,
       false, [](FakeTool& t, const Words& w) { return t.sendItems(w, false); }},
      {"flood", "flood N LINE            message 7, N times, as fast as it goes", 2, true,
       [](FakeTool& t, const Words& w) { return t.flood(w); }},
      {"print", "print LINE              to standard output", 1, true,
       [](FakeTool&, const Words& w) { return std::puts(w[0].c_str()) >= 0; }},
      {"complain", "complain LINE           to standard error", 1, true,
       [](FakeTool&, const Words& w) { return std::fprintf(stderr, "%s\n", w[0].c_str()) >= 0; }},
      {"wait", "wait SECONDS            listens to orders meanwhile", 1, false,
       [](FakeTool& t, const Words& w) { return t.wait(w); }},
      {"await", "await CODE [SECONDS]    waits for this message", 1, false,
       [](FakeTool& t, const Words& w) { return t.await(w); }},
      {"keep", "keep CODE PATH          waits for this message, writes its contents as they came",
       2, true, [](FakeTool& t, const Words& w) { return t.keep(w); }},
      {"ignore", "ignore stop|suspend     stays when it is to end", 1, false,
       [](FakeTool& t, const Words& w) { return t.ignore(w); }},
      {"lock", "lock PATH               takes the lock beside the status file at PATH", 1, true,
       [](FakeTool& t, const Words& w) { return t.lock(w); }},
      {"unlock", "unlock                  gives it back", 0, false,
       [](FakeTool& t, const Words&) {
         t.lock_.reset();
         return true;
       }},
      {"status", "status BLOCK WORD PATH  writes STATUS and the present DATE of a block", 3, true,
       [](FakeTool& t, const Words& w) { return t.status(w); }},
      {"entry", "entry BLOCK KEY VALUE PATH  writes any entry of the status file", 4, true,
       [](FakeTool&, const Words& w) { return writeStatusEntry(w[2], w[0], w[1], w[3]) == 1; }},
      {"file", "file PATH [LINE]        writes a file of one line", 1, true,
       [](FakeTool& t, const Words& w) { return t.file(w); }},
      {"exit", "exit STATUS", 1, false, [](FakeTool& t, const Words& w) { return t.end(w); }},
      {"die", "die SIGNAL              by number or name (KILL, SEGV ...)", 1, false,
       [](FakeTool& t, const Words& w) { return t.die(w); }},
  };
  return table;
}

std::string FakeTool::help() {
  std::string text;
  for (const auto& command : commands()) text += "  " + std::string(command.usage) + '\n';
  return text;
}

bool FakeTool::obey(std::string_view line, std::string& error) {
  TLTokens tokens(line);
  const std::string_view name = tokens.next();
  if (name.empty() || name.front() == '#') return true;
  const auto command = std::find_if(commands().begin(), commands().end(),
                                    [name](const Command& c) { return c.name == name; });
  if (command == commands().end()) {
    error = "no such command: " + std::string(name);
    return false;
  }
  Words words;
  while (!command->rest || words.size() + 1 < std::max<std::size_t>(command->words, 1)) {
    const auto word = tokens.next();
    if (word.empty()) break;
    words.emplace_back(word);
  }
  if (command->rest) {
    auto rest = tokens.rest();
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
    if (!rest.empty()) words.emplace_back(rest);
  }
  if (words.size() < command->words || !command->action(*this, words)) {
    error = "cannot do \"" + std::string(line) + "\"; use: " + std::string(command->usage);
    return false;
  }
  std::fflush(stdout);
  return true;
}

void FakeTool::send(std::int32_t code) const {
  if (daemon_ > 0) pvm_send(daemon_, code);
}

bool FakeTool::plain(std::int32_t code) {
  return sendItems({std::to_string(code)}, true);
}

bool FakeTool::withText(std::int32_t code, const std::string& text) {
  return sendItems({std::to_string(code), "s:" + text}, true);
}

// The daemon gives an end message back to the tool that sent it. One that is gone before the daemon
// has read its message 5 counts as crashed.
bool FakeTool::finished(const std::string& text) {
  const bool sent = text.empty() ? plain(5) : withText(5, text);
  receive(5, kAnswerSeconds);
  return sent;
}

bool FakeTool::error(const Words& words) {
  withText(8, words[0]);
  receive(8, kAnswerSeconds);
  return true;
}

bool FakeTool::sendItems(const Words& words, bool counted) {
  std::vector<Item> items(words.size() - 1);
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (!itemFrom(words[i + 1], items[i])) return false;
  }
  if (daemon_ <= 0) return true;
  pvm_initsend(PvmDataDefault);
  if (counted) packInt(static_cast<std::int32_t>(items.size()));
  for (const auto& item : items) packItem(item, counted);
  send(std::atoi(words[0].c_str()));
  return true;
}

bool FakeTool::flood(const Words& words) {
  const int count = std::atoi(words[0].c_str());
  for (int i = 0; i < count; ++i) withText(7, words[1]);
  return true;
}

bool FakeTool::values(const Words& words) {
  if (words.size() % 2 == 0) return false;
  if (daemon_ <= 0) return true;
  std::vector<float> x;
  std::vector<float> y;
  for (std::size_t i = 1; i < words.size(); i += 2) {
    x.push_back(static_cast<float>(std::atof(words[i].c_str())));
    y.push_back(static_cast<float>(std::atof(words[i + 1].c_str())));
  }
  const auto count = static_cast<std::int32_t>(x.size());
  pvm_initsend(PvmDataDefault);
  for (const std::int32_t head : {1, 8, 1, static_cast<std::int32_t>(words[0].size())}) {
    packInt(head);
  }
  packString(words[0]);
  for (const std::int32_t head : {0, 0, 0, 0, count}) packInt(head);
  pvm_pkfloat(x.data(), count, 1);
  pvm_pkfloat(y.data(), count, 1);
  send(13);
  return true;
}

bool FakeTool::processId(const Words& words) {
  const std::string id = words.size() > 1 ? words[1] : std::to_string(getpid());
  return sendItems({"20", "s:" + words[0], "i:" + id}, true);
}

bool FakeTool::argumentsTo(const Words& words) {
  daemon_ = std::atoi(words[0].c_str());
  Words message = {"9"};
  for (std::size_t i = 1; i < words.size(); ++i) message.push_back("s:" + words[i]);
  return sendItems(message, true);
}

std::int32_t FakeTool::receive(std::int32_t tag, double seconds) {
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  if (daemon_ <= 0) {
    std::this_thread::sleep_until(end);
    return 0;
  }
  while (true) {
    const double left = std::max(std::chrono::duration<double>(end - Clock::now()).count(), 0.0);
    timeval limit = {static_cast<time_t>(left), static_cast<suseconds_t>(left * 1e6) % 1000000};
    const int buffer = pvm_trecv(daemon_, -1, &limit);
    if (buffer <= 0) return 0;
    int bytes = 0;
    int found = 0;
    int source = 0;
    pvm_bufinfo(buffer, &bytes, &found, &source);
    std::printf("received %d\n", found);
    std::fflush(stdout);
    if (found == kSuspend && !ignoresSuspend_) {
      over_ = true;
      ignoresSuspend_ = true;
      finished("suspended");
      return found;
    }
    if (found == tag) return found;
  }
}

bool FakeTool::wait(const Words& words) {
  receive(0, std::atof(words[0].c_str()));
  return true;
}

bool FakeTool::await(const Words& words) {
  const double seconds = words.size() > 1 ? std::atof(words[1].c_str()) : kAnswerSeconds;
  if (receive(std::atoi(words[0].c_str()), seconds) == 0) std::printf("nothing received\n");
  return true;
}

// All that PVM packs is made of units of four bytes, which can be taken out as integers whatever
// they are. The file appears whole.
bool FakeTool::keep(const Words& words) {
  const std::int32_t code = std::atoi(words[0].c_str());
  if (receive(code, kKeepSeconds) != code) return true;
  int size = 0;
  int tag = 0;
  int source = 0;
  pvm_bufinfo(pvm_getrbuf(), &size, &tag, &source);
  const std::string beside = words[1] + ".new";
  std::ofstream out(beside, std::ios::binary);
  for (int unit = 0; unit < size / 4; ++unit) {
    int value = 0;
    pvm_upkint(&value, 1, 1);
    for (int shift = 24; shift >= 0; shift -= 8) {
      out.put(static_cast<char>(static_cast<unsigned>(value) >> shift));
    }
  }
  out.close();
  return std::rename(beside.c_str(), words[1].c_str()) == 0;
}

bool FakeTool::ignore(const Words& words) {
  if (words[0] == "suspend") {
    ignoresSuspend_ = true;
    return true;
  }
  return words[0] == "stop" && signal(SIGTERM, SIG_IGN) != SIG_ERR;
}

bool FakeTool::die(const Words& words) {
  const int number = signalFrom(words[0]);
  if (number < 1 || number >= NSIG) return false;
  std::fflush(stdout);
  // What was sent just before a sudden death may die with it; a question that the virtual machine
  // has answered came after all of that.
  if (daemon_ > 0) pvm_pstat(pvm_mytid());
  const rlimit noCore = {0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  signal(number, SIG_DFL);
  raise(number);
  return false;
}

bool FakeTool::end(const Words& words) {
  over_ = true;
  exitStatus_ = std::atoi(words[0].c_str());
  return true;
}

bool FakeTool::lock(const Words& words) {
  while (!lock_) {
    lock_ = acquireStatusLock(words[0]);
    if (!lock_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  std::printf("locked\n");
  return true;
}

bool FakeTool::status(const Words& words) {
  const auto now = static_cast<std::int64_t>(std::time(nullptr));
  return writeStatusEntry(formatStatusDate(now), words[0], "DATE", words[2]) == 1 &&
         writeStatusEntry(words[1], words[0], "STATUS", words[2]) == 1;
}

bool FakeTool::file(const Words& words) {
  const auto blank = words[0].find(' ');
  std::ofstream out(words[0].substr(0, blank));
  if (blank != std::string::npos) out << words[0].substr(blank + 1);
  out << '\n';
  return out.flush().good();
}
