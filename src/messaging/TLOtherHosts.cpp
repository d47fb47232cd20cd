#include "messaging/TLOtherHosts.h"

namespace {

using Clock = TLHostQuestions::Clock;

// How long a question holds this process up: a host that answers does so in milliseconds.
constexpr double kPatience = 0.25;
constexpr double kPatienceBesideSilence = 0.05;
// A host is shown as silent behind this time.
constexpr auto kSilence = std::chrono::seconds(1);
// The same while another one is silent: PVM doubles the time between its tries, and questions to
// the others wait for the next one.
constexpr auto kSilenceBesideSilence = std::chrono::seconds(75);
// Who has answered so lately is not asked again before a start.
constexpr auto kFresh = std::chrono::seconds(1);

}  // namespace

TLHostQuestions& TLOtherHosts::at(std::int32_t host, const Naming& naming) {
  const auto found = hosts_.find(host);
  if (found != hosts_.end()) return found->second;
  return hosts_.try_emplace(host, program_, naming(host)).first->second;
}

TLHostQuestions* TLOtherHosts::longestSilent() {
  TLHostQuestions* longest = nullptr;
  for (auto& [tid, host] : hosts_) {
    if (!host.silent()) continue;
    if (longest == nullptr || host.askedAt() < longest->askedAt()) longest = &host;
  }
  return longest;
}

std::int32_t TLOtherHosts::status(std::int32_t host, std::int32_t tid, const Naming& naming,
                                  const Question& direct) {
  const double patience = longestSilent() == nullptr ? kPatience : kPatienceBesideSilence;
  return at(host, naming).ask("task " + std::to_string(tid), patience, direct);
}

TLSilentHost TLOtherHosts::silence(std::int32_t host) {
  const auto found = hosts_.find(host);
  if (found == hosts_.end() || !found->second.silent()) return {};
  const TLHostQuestions& questions = found->second;
  const bool first = longestSilent() == &questions;
  const auto needed = first ? kSilence : kSilenceBesideSilence;
  if (Clock::now() - questions.askedAt() < needed) return {};
  return {questions.name(), questions.since()};
}

TLSilentHost TLOtherHosts::obstacle(std::int32_t host, const Naming& naming) {
  TLHostQuestions* silent = longestSilent();
  if (silent == nullptr) {
    TLHostQuestions& questions = at(host, naming);
    if (Clock::now() - questions.answeredAt() < kFresh) return {};
    // Without a companion the start itself has to find out.
    questions.ask("host " + std::to_string(host), kPatience, [] { return 0; });
    if (!questions.silent()) return {};
    silent = &questions;
  }
  return {silent->name(), silent->since()};
}
