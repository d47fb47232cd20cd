#include "messaging/TLHostQuestions.h"

#include <charconv>
#include <utility>

#include "platform/TLConsole.h"

namespace {

constexpr auto kRestartPause = std::chrono::seconds(10);
constexpr auto kShortLife = std::chrono::seconds(1);

double secondsNow() {
  using std::chrono::duration;
  return duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::optional<std::int32_t> codeOf(const std::string& line) {
  std::int32_t code = 0;
  const char* end = line.data() + line.size();
  const auto [stop, error] = std::from_chars(line.data(), end, code);
  if (error != std::errc() || stop != end) return std::nullopt;
  return code;
}

}  // namespace

TLHostQuestions::TLHostQuestions(std::string program, std::string name)
    : program_(std::move(program)), name_(std::move(name)) {}

std::int32_t TLHostQuestions::ask(const std::string& question, double seconds,
                                  const std::function<std::int32_t()>& direct) {
  if (silent()) return last_[question];
  if (const auto late = late_.find(question); late != late_.end()) {
    const std::int32_t code = late->second;
    late_.erase(late);
    return code;
  }
  question_ = question;
  askedAt_ = Clock::now();
  since_ = secondsNow();
  // The companion may have ended since the last question: a new one is tried once.
  for (int attempt = 0; attempt < 2 && sendQuestion(); ++attempt) {
    const bool answered = takeAnswer(seconds);
    if (answered) late_.erase(question);
    if (answered || companion_) return last_[question];
  }
  question_.clear();
  return last_[question] = direct();
}

bool TLHostQuestions::silent() {
  if (question_.empty()) return false;
  if (takeAnswer(0)) return false;
  // The question of a companion that has died is asked again by the next one.
  if (!companion_ && !sendQuestion()) question_.clear();
  return !question_.empty();
}

bool TLHostQuestions::haveCompanion() {
  if (companion_) return true;
  if (Clock::now() < notBefore_) return false;
  std::string error;
  companion_ = TLHelperProcess::start({program_}, error);
  startedAt_ = Clock::now();
  if (!companion_) lose("can't be started: " + error);
  return companion_.has_value();
}

bool TLHostQuestions::sendQuestion() {
  if (!haveCompanion()) return false;
  if (companion_->send(question_)) return true;
  lose("has ended");
  return haveCompanion() && companion_->send(question_);
}

bool TLHostQuestions::takeAnswer(double seconds) {
  if (!companion_) return false;
  const auto line = companion_->receive(seconds);
  const auto code = line ? codeOf(*line) : std::nullopt;
  if (code) {
    last_[question_] = *code;
    if (*code < 0) late_[question_] = *code;
    question_.clear();
    answeredAt_ = Clock::now();
    return true;
  }
  if (line || companion_->gone()) lose(line ? "answers \"" + *line + "\"" : "has ended");
  return false;
}

void TLHostQuestions::lose(const std::string& why) {
  const bool started = companion_.has_value();
  companion_.reset();
  // One that ended at once would end at once again.
  const auto now = Clock::now();
  if (!started || now - startedAt_ < kShortLife) notBefore_ = now + kRestartPause;
  console() << "the process that asks about host " << name_ << ' ' << why
            << (now < notBefore_ ? "; for now this process asks itself\n"
                                 : "; another is started\n")
            << std::flush;
}
