#include "tool/TLTerminal.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>

namespace {

struct StatusColour {
  std::string_view word;
  std::string_view code;
};

constexpr std::array<StatusColour, 6> kStatusColours{{
    {"pending", "2"},
    {"running", "36"},
    {"finished ok", "32"},
    {"finished ko", "31"},
    {"crashed", "1;31"},
    {"stopped", "33"},
}};

bool isSet(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

bool isDumb() {
  const char* term = std::getenv("TERM");
  return term == nullptr || std::string_view(term) == "dumb";
}

}  // namespace

TLTerminal::TLTerminal()
    : isTerminal_(isatty(STDOUT_FILENO) == 1 && !isDumb()),
      hasColour_(isTerminal_ && !isSet("NO_COLOR")) {}

int TLTerminal::width() const {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

int TLTerminal::height() const {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0) return size.ws_row;
  return 24;
}

std::string TLTerminal::wrapped(std::string_view code, std::string_view text) const {
  if (!hasColour_) return std::string(text);
  return fmt::format("\x1b[{}m{}\x1b[0m", code, text);
}

std::string TLTerminal::statusColoured(std::string_view statusWord, std::string_view text) const {
  for (const auto& row : kStatusColours) {
    if (row.word == statusWord) return wrapped(row.code, text);
  }
  return std::string(text);
}

std::string TLTerminal::bold(std::string_view text) const {
  return wrapped("1", text);
}
std::string TLTerminal::faint(std::string_view text) const {
  return wrapped("2", text);
}

std::string durationText(double seconds) {
  if (seconds < 60) return fmt::format("{:.1f} s", seconds);
  const auto whole = static_cast<long>(seconds);
  if (whole < 3600) return fmt::format("{} min {:02} s", whole / 60, whole % 60);
  return fmt::format("{} h {:02} min", whole / 3600, whole / 60 % 60);
}

double secondsNow() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::string clockText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return fmt::format("{:02}:{:02}:{:02}", local.tm_hour, local.tm_min, local.tm_sec);
}
