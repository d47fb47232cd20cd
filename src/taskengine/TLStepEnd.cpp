#include "taskengine/TLStepEnd.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "platform/TLHostForm.h"
#include "textio/TLTextSource.h"

namespace {

using Kind = TLStepEnd::Kind;

/// Room for what tools say, so that the sentence stays one that can be read.
constexpr std::size_t kLongestQuote = 300;
constexpr std::int32_t kShellOffset = 128;
constexpr std::int32_t kKill = 9;

struct SignalRow {
  std::int32_t number;
  const char* name;
  const char* meaning;  ///< null for one that comes from outside the process
};
constexpr auto kSignals = std::to_array<SignalRow>({
    {1, "SIGHUP", nullptr},
    {2, "SIGINT", nullptr},
    {3, "SIGQUIT", nullptr},
    {4, "SIGILL", "no instruction of this processor"},
    {5, "SIGTRAP", "a trap of a debugger"},
    {6, "SIGABRT", "it gave up by itself"},
    {7, "SIGBUS", "bad memory access"},
    {8, "SIGFPE", "bad arithmetic"},
    {kKill, "SIGKILL", nullptr},
    {11, "SIGSEGV", "bad memory access"},
    {13, "SIGPIPE", "nobody read its output any more"},
    {15, "SIGTERM", nullptr},
    {24, "SIGXCPU", "it had used up its processor time"},
    {25, "SIGXFSZ", "a file grew over its limit"},
});

const SignalRow* findSignal(std::int32_t number) {
  const auto row = std::find_if(kSignals.begin(), kSignals.end(),
                                [&](const SignalRow& signal) { return signal.number == number; });
  return row == kSignals.end() ? nullptr : &*row;
}

std::int32_t signalOf(std::int32_t waitStatus) {
  return waitStatus & 0x7f;
}

std::int32_t exitStatusOf(std::int32_t waitStatus) {
  return (waitStatus >> 8) & 0xff;
}

/// "signal 11 (SIGSEGV, bad memory access)"
RWCString signalText(std::int32_t number) {
  const SignalRow* row = findSignal(number);
  RWCString text = "signal " + std::to_string(number);
  if (row == nullptr) return text;
  text += RWCString(" (") + row->name;
  if (row->meaning != nullptr) text += RWCString(", ") + row->meaning;
  return text + ")";
}

RWCString bounded(RWCString text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  if (text.size() <= kLongestQuote) return text;
  return text.substr(0, kLongestQuote) + "...";
}

/// What the status that a program leaves stands for by the shells' convention.
RWCString exitText(std::int32_t status) {
  RWCString text = "exited with status " + std::to_string(status);
  if (status == 127) return text + " (a program that it calls was not found)";
  if (status == 126) return text + " (a program that it calls can't be executed)";
  if (status <= kShellOffset || findSignal(status - kShellOffset) == nullptr) return text;
  return text + " (a program that it calls was ended by " + signalText(status - kShellOffset) + ")";
}

RWCString signalEnd(const TLStepEnd& end) {
  const std::int32_t number = signalOf(*end.waitStatus);
  if (number == kKill && end.memoryWasShort) {
    return "ended by the kernel for want of memory (signal 9, SIGKILL)";
  }
  const SignalRow* row = findSignal(number);
  const bool fromOutside = row != nullptr && row->meaning == nullptr;
  return (fromOutside ? "killed from outside by " : "ended by ") + signalText(number);
}

/// The sentence of a process that is gone; empty when it did what it should.
RWCString processEnd(const TLStepEnd& end) {
  const RWCString place = " on host " + end.host;
  if (!end.waitStatus) {
    if (end.announced) return {};
    return "ended without a word" + place;
  }
  const bool good = *end.waitStatus == 0;
  if (good && !end.crashed) return {};
  RWCString text =
      signalOf(*end.waitStatus) != 0 ? signalEnd(end) : exitText(exitStatusOf(*end.waitStatus));
  text += place;
  if (end.announced) return text + ", after it had said that it was done";
  return end.crashed ? text + " and never said that it was done" : text;
}

/// Sentences by kind; %h is the host, %d the detail. `telling` are those behind which the tool's
/// own words and the place of its log help.
struct SentenceRow {
  Kind kind;
  std::string_view text;
  bool telling;
};
constexpr auto kSentences = std::to_array<SentenceRow>({
    {Kind::lostSight, "lost from sight on host %h: the virtual machine answers %d", true},
    {Kind::hostLost, "lost with its host: %h has left the virtual machine", true},
    {Kind::machineLost, "lost from sight on host %h: the virtual machine is gone", true},
    {Kind::statusFile, "given up by itself on host %h: %d", true},
    {Kind::leftQueue, "its job has left the queue on host %h, which says: %d", true},
    {Kind::jobFailed, "its job failed or was removed on host %h: the queue says: %d", true},
    {Kind::stopped, "stopped on request on host %h", false},
    {Kind::jobDeleted, "its job %d was deleted from the queue on request on host %h", false},
    {Kind::stoppedInWindow, "stopped from the task's window on host %h", false},
    {Kind::stoppedEarly, "never started: the task was stopped before its turn", false},
    {Kind::neverStarted, "never started on host %h: %d", false},
    {Kind::copyFailed, "never started: its files could not be copied to host %h: %d", false},
    {Kind::disabled, "skipped: the step is disabled", false},
    {Kind::behindFailure, "skipped: disabled because %d failed before it", false},
    {Kind::needless, "skipped: one part needs no partition", false},
});

RWCString filled(std::string_view text, const TLStepEnd& end) {
  RWCString result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char next = i + 1 < text.size() ? text[i + 1] : '\0';
    if (text[i] != '%' || (next != 'h' && next != 'd')) {
      result += text[i];
      continue;
    }
    result += next == 'h' ? end.host : bounded(end.detail);
    ++i;
  }
  return result;
}

RWCString besideIt(const TLStepEnd& end) {
  RWCString text;
  if (!end.errors.empty()) text += "; it had reported: " + bounded(end.errors);
  if (!end.lastLine.empty()) text += "; its last line: \"" + bounded(end.lastLine) + "\"";
  if (!end.log.empty()) text += "; log: " + end.log;
  return text;
}

}  // namespace

void TLStepEnd::take(std::int32_t oneWaitStatus) {
  const auto weight = [](std::int32_t status) {
    return signalOf(status) != 0 ? 2 : (status != 0 ? 1 : 0);
  };
  if (!waitStatus || weight(oneWaitStatus) > weight(*waitStatus)) waitStatus = oneWaitStatus;
}

RWCString TLStepEnd::sentence() const {
  if (kind == Kind::process) {
    const RWCString text = processEnd(*this);
    return text.empty() ? text : text + besideIt(*this);
  }
  const auto row = std::find_if(kSentences.begin(), kSentences.end(),
                                [&](const SentenceRow& one) { return one.kind == kind; });
  if (row == kSentences.end()) return {};
  return filled(row->text, *this) + (row->telling ? besideIt(*this) : RWCString());
}

RWCString lastOutputLine(const RWCString& path, const std::vector<std::int32_t>& tids) {
  constexpr std::size_t kLastPages = 65536;
  const RWCString text = hostForm().readEnd(path, kLastPages).value_or("");
  std::vector<RWCString> signs;
  for (const std::int32_t tid : tids) {
    std::array<char, 16> sign{};
    std::snprintf(sign.data(), sign.size(), "[t%x] ", static_cast<unsigned>(tid));
    signs.emplace_back(sign.data());
  }
  RWCString last;
  TLTextSource lines(text);
  for (std::string_view line; lines.readRawLine(line);) {
    for (const auto& sign : signs) {
      if (!line.starts_with(sign)) continue;
      const std::string_view said = line.substr(sign.size());
      if (said != "BEGIN" && said != "EOF" && said.find_first_not_of(" \t\r") != said.npos) {
        last = said;
      }
    }
  }
  return last;
}
