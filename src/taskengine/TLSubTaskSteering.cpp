#include <algorithm>

#include "taskengine/TLMessageItems.h"
#include "taskengine/TLReports.h"
#include "taskengine/TLSubTask.h"

namespace {

/// The present parameter goes on under a name of the new one.
bool continues(const TLSteeringParameter& present, const TLSteeringParameter& next) {
  return present.name == next.name || present.name == next.userName;
}

}  // namespace

void TLSubTask::sendSteering(std::int32_t tid, const Handle<TLSteeringParameters>& known) {
  if (!steering) return;
  TLProcessMessage message(steering);
  message.tag = TL_MSG_STEERING_VALUES;
  message.destination = tid;
  const auto found = std::find(parents.begin(), parents.end(), tid);
  const auto position = static_cast<std::size_t>(found - parents.begin());
  const bool isParent = position < parentSteeringDirty.size();
  message.addString(steering->name);
  message.addSteering(steering, known);
  message.addInteger(isParent ? parentSteeringDirty[position] : 0);
  if (isParent) parentSteeringDirty[position] = 0;
  steering->resetMark = 0;
  steeringDirty = 0;
  if (message.send()) steering->clearAllValues();
}

void TLSubTask::applyNewSteering(const Handle<TLSteeringParameters>& parameters) {
  if (steering && parameters && steering != parameters) {
    for (const auto& present : steering->parameters) {
      for (const auto& next : parameters->parameters) {
        if (continues(*present, *next)) next->takeValues(*present);
      }
    }
  }
  steering = parameters;
}

int TLSubTask::loadSteering(const RWCString& path) {
  steering = makeHandle<TLSteeringParameters>();
  return steering->read(path) ? 1 : 0;
}

void TLSubTask::answerSteering(std::int32_t tid) {
  reportPhrase("ASK FLOW SOLVER STEERING");
  if (steering) {
    TLProcessMessage answer;
    answer.tag = TL_MSG_NEW_STEERING;
    answer.addString(steering->name);
    answer.addNewSteering(steering);
    answer.destination = tid;
    answer.send();
  }
  steeringAsked = 1;
}

void TLSubTask::resetSteering(std::int32_t tid) {
  reportPhrase("RESET FLOW SOLVER STEERING");
  if (steering) steering->resetMark = 1;
  std::fill(parentSteeringDirty.begin(), parentSteeringDirty.end(), 1);
  steeringDirty = 1;
  sendEmpty(tid, TL_MSG_ACK);
}
