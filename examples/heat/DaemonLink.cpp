#include "DaemonLink.h"

#include <pvm3.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

// Codes of the messages, which are PVM's tags.
constexpr int kStarted = 4;
constexpr int kFinished = 5;
constexpr int kText = 7;
constexpr int kErrorText = 8;

// Types of the sub-messages.
constexpr int kInteger = 1;
constexpr int kString = 7;

void packInt(int value) {
  pvm_pkint(&value, 1, 1);
}

// A text travels as its length and as PVM's string.
void packText(const std::string& text) {
  packInt(static_cast<int>(std::strlen(text.c_str())));
  pvm_pkstr(const_cast<char*>(text.c_str()));
}

int indexOf(int argc, char** argv, const std::string& option) {
  for (int i = 1; i < argc; ++i) {
    if (option == argv[i]) return i;
  }
  return 0;
}

}  // namespace

DaemonLink::DaemonLink(int argc, char** argv) {
  const int option = indexOf(argc, argv, "-parendId");
  const bool spawned = std::getenv("PVMEPID") != nullptr;
  if (option == 0 && !spawned) return;  // by hand: don't bother a virtual machine
  if (pvm_mytid() < 0) return;
  if (option != 0 && option + 1 < argc) daemon_ = std::atoi(argv[option + 1]);
  if (daemon_ <= 0) daemon_ = pvm_parent();
}

DaemonLink::~DaemonLink() {
  if (present()) pvm_exit();
}

void DaemonLink::started() {
  begin(0);
  send(kStarted);
}

void DaemonLink::text(const std::string& line) {
  begin(1);
  addText(line);
  send(kText);
}

void DaemonLink::finished(const std::vector<std::string>& lines) {
  begin(static_cast<int>(lines.size()));
  for (const auto& line : lines) addText(line);
  send(kFinished);
  waitForEcho();
}

// The daemon gives an end message back to the tool that sent it. A tool that is gone before the
// daemon has read its message 5 counts as crashed, so leave only when it has, or when nobody is
// there to read it.
void DaemonLink::waitForEcho() const {
  constexpr int kLongest = 600;  // tries of a tenth of a second
  for (int i = 0; present() && i < kLongest && pvm_pstat(daemon_) == PvmOk; ++i) {
    timeval tenth = {0, 100000};
    if (pvm_trecv(daemon_, kFinished, &tenth) > 0) return;
  }
}

void DaemonLink::failing(const std::string& reason) {
  begin(1);
  addText(reason);
  send(kErrorText);
  if (!present()) return;
  timeval patience = {5, 0};
  pvm_trecv(daemon_, kErrorText, &patience);  // the daemon answers when it has kept the text
}

std::optional<int> DaemonLink::nextMessage() {
  if (!present()) return std::nullopt;
  const int buffer = pvm_nrecv(daemon_, -1);
  if (buffer <= 0) return std::nullopt;
  int bytes = 0;
  int tag = 0;
  int source = 0;
  pvm_bufinfo(buffer, &bytes, &tag, &source);
  return tag;
}

void DaemonLink::waitFor(int code, int seconds) const {
  for (int i = 0; present() && i < seconds * 1000 && pvm_probe(daemon_, code) == 0; ++i) {
    usleep(1000);
  }
}

void DaemonLink::begin(int subMessages) const {
  if (!present()) return;
  pvm_initsend(PvmDataDefault);
  packInt(subMessages);
}

void DaemonLink::addInteger(int value) const {
  if (!present()) return;
  packInt(kInteger);
  packInt(value);
}

void DaemonLink::addText(const std::string& text) const {
  if (!present()) return;
  packInt(kString);
  packText(text);
}

void DaemonLink::send(int code) const {
  if (present()) pvm_send(daemon_, code);
}

std::string besideRunFile(const std::string& runFile, const std::string& extension) {
  return runFile.substr(0, runFile.rfind(".run")) + extension;
}

std::string runFileArgument(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    std::string word = argv[i];
    if (word.size() > 4 && word.compare(word.size() - 4, 4, ".run") == 0) return word;
  }
  return {};
}

double numberArgument(int argc, char** argv, const std::string& option, double otherwise) {
  const int i = indexOf(argc, argv, option);
  return i == 0 || i + 1 >= argc ? otherwise : std::atof(argv[i + 1]);
}

bool hasArgument(int argc, char** argv, const std::string& option) {
  return indexOf(argc, argv, option) != 0;
}
