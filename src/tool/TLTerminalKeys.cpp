#include "tool/TLTerminalKeys.h"

#include <poll.h>
#include <unistd.h>

#include <csignal>

namespace {

volatile std::sig_atomic_t gContinued = 0;

void markContinued(int /*signal*/) {
  gContinued = 1;
}

bool inForeground() {
  return tcgetpgrp(STDIN_FILENO) == getpgrp();
}

}  // namespace

TLTerminalKeys::TLTerminalKeys() {
  if (isatty(STDIN_FILENO) == 0 || !inForeground() || tcgetattr(STDIN_FILENO, &before_) != 0) {
    return;
  }
  active_ = true;
  std::signal(SIGCONT, markContinued);
  enter();
}

TLTerminalKeys::~TLTerminalKeys() {
  if (active_ && inForeground()) tcsetattr(STDIN_FILENO, TCSANOW, &before_);
}

void TLTerminalKeys::enter() {
  termios raw = before_;
  raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  raw.c_cc[VMIN] = 0;
  raw.c_cc[VTIME] = 0;
  tcsetattr(STDIN_FILENO, TCSANOW, &raw);
}

char TLTerminalKeys::next() {
  if (!active_ || !inForeground()) return 0;
  if (gContinued != 0) {  // the shell has set the terminal as it likes it
    gContinued = 0;
    enter();
  }
  pollfd waiting{STDIN_FILENO, POLLIN, 0};
  char key = 0;
  if (poll(&waiting, 1, 0) != 1 || read(STDIN_FILENO, &key, 1) != 1) return 0;
  return key;
}
