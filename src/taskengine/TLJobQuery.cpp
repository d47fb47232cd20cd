#include "taskengine/TLJobQuery.h"

#include <array>
#include <string>
#include <string_view>

#include "launching/TLQueueCommand.h"
#include "platform/TLHostForm.h"
#include "textio/TLNumbers.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokens.h"

namespace {

struct System {
  std::string_view command;
  std::string_view stem;
};
/// By kind, from 1.
constexpr auto kSystems = std::to_array<System>({
    {"qstat -j ", "tmpout_SGE_qstat"},
    {"qstat -J ", "tmpout_PBS_qstat"},
    {"bjobs ", "tmpout_LSF_bjobs"},
});

std::string_view word(std::string_view line, int number) {
  TLTokens tokens(line);
  for (int i = 1; i < number; ++i) tokens.next();
  return tokens.next();
}

bool holdsIgnoringCase(std::string_view line, std::string_view text) {
  for (std::size_t i = 0; i + text.size() <= line.size(); ++i) {
    if (equalIgnoringCase(line.substr(i, text.size()), text)) return true;
  }
  return false;
}

}  // namespace

TLJobAnswer sgeJobState(const RWCString& answer) {
  TLTextSource lines(answer);
  TLJobAnswer result{TLJobState::unknown, firstLineOf(answer), {}, true};
  std::string_view line;
  while (lines.readRawLine(line)) {
    const std::string_view first = word(line, 1);
    if (first == "Following") return {TLJobState::finished, RWCString(line), {}, true};
    result.state = TLJobState::running;
    if (first == "job_number:") {
      result.odd = false;
      if (result.word.empty()) result.word = "qw";
    } else if (first == "usage") {
      result.word = "r";
    } else if (first == "error" && word(line, 2) == "reason") {
      result.word = "Eqw";
      result.said = line;
      result.odd = true;
    }
  }
  return result;
}

TLJobAnswer pbsJobState(const RWCString& answer, std::int32_t job) {
  const std::string number = std::to_string(job);
  TLTextSource lines(answer);
  TLJobAnswer result{TLJobState::unknown, firstLineOf(answer), {}, true};
  std::string_view line;
  while (lines.readRawLine(line)) {
    if (line.find(number) == std::string_view::npos) continue;
    if (holdsIgnoringCase(line, "Unknown") || holdsIgnoringCase(line, "has finished")) {
      return {TLJobState::finished, RWCString(line), {}, true};
    }
    const bool row = word(line, 1).starts_with(number);
    result = {TLJobState::running, RWCString(line), RWCString(row ? word(line, 5) : ""), !row};
  }
  return result;
}

TLJobAnswer lsfJobState(const RWCString& answer) {
  TLTextSource lines(answer);
  std::string_view line;
  while (lines.readRawLine(line)) {
    if (word(line, 1) != "JOBID") continue;
    if (!lines.readRawLine(line)) break;
    const std::string_view state = word(line, 3);
    const bool ended = state == "DONE" || state == "EXIT";
    return {ended ? TLJobState::finished : TLJobState::running, RWCString(line), RWCString(state),
            ended};
  }
  return {TLJobState::unknown, firstLineOf(answer), {}, true};
}

TLJobAnswer queryJob(std::int32_t kind, std::int32_t job, const RWCString& host,
                     const RWCString& login) {
  if (kind < 1 || kind > static_cast<std::int32_t>(kSystems.size())) {
    return {TLJobState::unknown, "no queuing system has this number", {}, true};
  }
  const System& system = kSystems[static_cast<std::size_t>(kind - 1)];
  const std::string number = std::to_string(job);
  const auto answer =
      askQueue(host, std::string(system.command) + number, login,
               std::string(system.stem) + number + std::to_string(hostForm().randomNumber() + 1));
  if (!answer) return {TLJobState::unknown, "no answer could be read", {}, true};
  if (kind == 1) return sgeJobState(*answer);
  return kind == 2 ? pbsJobState(*answer, job) : lsfJobState(*answer);
}
