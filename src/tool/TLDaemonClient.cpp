#include "tool/TLDaemonClient.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <thread>
#include <utility>

#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageString.h"
#include "messaging/TLVirtualMachine.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::array<std::string_view, 6> kStatusTexts = {"pending",     "running", "finished ok",
                                                          "finished ko", "crashed", "stopped"};
constexpr std::int32_t kFirstTerminal = 2;
constexpr std::int32_t kStartErrorOffset = 10000;
// Between two looks at the inbox: short while an answer may come at once, longer afterwards.
constexpr auto kQuickLook = std::chrono::microseconds(200);
constexpr auto kSlowLook = std::chrono::milliseconds(10);
constexpr auto kQuickTime = std::chrono::milliseconds(100);
// How often the virtual machine is asked whether the daemon lives while waiting for it.
constexpr auto kLifeCheck = std::chrono::milliseconds(200);

bool isStartError(std::int32_t tag) {
  const std::int32_t code = tag - kStartErrorOffset;
  return code >= TL_MSG_NO_TASK_FILE && code <= TL_MSG_WRONG_FORMAT;
}

std::string stringsOf(const TLProcessMessage& message) {
  std::string text;
  for (const auto& part : message.subMessages) {
    const auto* string = dynamic_cast<const TLSubMessageString*>(part.get());
    if (string != nullptr) text += string->text;
  }
  return text;
}

TLEndReport endReportOf(const TLProcessMessage& message) {
  TLEndReport report;
  for (const auto& part : message.subMessages) {
    if (const auto* text = dynamic_cast<const TLSubMessageString*>(part.get())) {
      report.texts.push_back(text->text);
    } else if (const auto* step = dynamic_cast<const TLSubMessageInteger*>(part.get())) {
      report.step = step->value;
    }
  }
  return report;
}

}  // namespace

std::string statusText(std::int32_t status) {
  const auto at = static_cast<std::size_t>(status);
  return status >= 0 && at < kStatusTexts.size() ? std::string(kStatusTexts[at])
                                                 : "not a correct status";
}

bool isTerminalStatus(std::int32_t status) {
  return status >= kFirstTerminal;
}

bool TLDaemonClient::enrol() {
  TL_virtual_machine_allow(true);
  return TL_virtual_machine_mytid() > 0;
}

bool TLDaemonClient::alive() const {
  return TL_virtual_machine_status(tid_) == kVirtualMachineOk;
}

void TLDaemonClient::receiveWaiting() {
  TLProcessMessage message;
  while (message.receiveNoWait(-1, -1)) take(message);
}

void TLDaemonClient::take(const TLProcessMessage& message) {
  if (message.source != tid_) return;
  if (isStartError(message.tag)) {
    startError_ = stringsOf(message);
  } else if (message.tag == TL_MSG_SOLVER_FINISHED) {
    endReports_.push_back(endReportOf(message));
  } else if (message.tag == TL_MSG_STEERING_VALUES) {
    if (mirror_ != nullptr) mirror_->take(message);
  } else {
    answered_.push_back(message.tag);
    if (message.tag != TL_MSG_STATUS) return;
    statuses_.clear();
    for (const auto& part : message.subMessages) {
      const auto* status = dynamic_cast<const TLSubMessageInteger*>(part.get());
      if (status != nullptr) statuses_.push_back(status->value);
    }
  }
}

std::vector<TLEndReport> TLDaemonClient::takeEndReports() {
  return std::exchange(endReports_, {});
}

bool TLDaemonClient::waitFor(const std::function<bool()>& done, Seconds patience) {
  const auto start = Clock::now();
  auto nextLifeCheck = start + kLifeCheck;
  while (true) {
    receiveWaiting();
    if (done()) return true;
    const auto now = Clock::now();
    if (now - start > patience || !startError_.empty()) return false;
    if (now >= nextLifeCheck) {
      if (!alive()) {
        receiveWaiting();  // what it said last
        return done();
      }
      nextLifeCheck = now + kLifeCheck;
    }
    if (now - start < kQuickTime) {
      std::this_thread::sleep_for(kQuickLook);
    } else {
      std::this_thread::sleep_for(kSlowLook);
    }
  }
}

bool TLDaemonClient::send(std::int32_t code) {
  TLProcessMessage message;
  message.tag = code;
  message.destination = tid_;
  return message.send();
}

bool TLDaemonClient::send(std::int32_t code, std::int32_t value) {
  TLProcessMessage message;
  message.tag = code;
  message.destination = tid_;
  message.addInteger(value);
  return message.send();
}

bool TLDaemonClient::poll(Seconds patience) {
  return beginPoll() && waitFor([this] { return pollAnswered(); }, patience);
}

bool TLDaemonClient::pollAnswered() const {
  return std::ranges::count(answered_, TL_MSG_STATUS) > 0;
}

bool TLDaemonClient::beginPoll() {
  TLProcessMessage question;
  question.tag = TL_MSG_STATUS;
  question.destination = tid_;
  if (mirror_ != nullptr) mirror_->addTo(question);
  std::erase(answered_, TL_MSG_STATUS);
  return question.send();
}

bool TLDaemonClient::sendSettings(const Handle<TLSteeringParameters>& set) {
  TLProcessMessage message;
  message.tag = TL_MSG_NEW_STEERING;
  message.destination = tid_;
  message.addString(set->name);
  message.addNewSteering(set);
  return message.send();
}

bool TLDaemonClient::ask(std::int32_t code, std::int32_t answer, Seconds patience) {
  std::erase(answered_, answer);
  return send(code) && waitFor([&] { return std::ranges::count(answered_, answer) > 0; }, patience);
}

bool TLDaemonClient::ask(std::int32_t code, std::int32_t value, std::int32_t answer,
                         Seconds patience) {
  std::erase(answered_, answer);
  return send(code, value) &&
         waitFor([&] { return std::ranges::count(answered_, answer) > 0; }, patience);
}

bool TLDaemonClient::waitGone(Seconds patience) {
  return waitFor([&] { return !alive(); }, patience);
}
