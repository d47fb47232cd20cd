#include "taskengine/TLSubTask.h"
#include "textio/TLKeyTable.h"

namespace {

constexpr std::string_view kRenamedTo = "tltaskmgrx86_64.exe";

TLKeyResult readHostName(TLSubTask& step, TLKeyContext& context) {
  const int good = context.reader.readString(context.line, step.hostName);
  if (good != 0) step.loadBalancing.hostName = step.hostName;
  return nextIf(good);
}

/// A login is often empty, which is no fault, neither for whoever observes the reading.
TLKeyResult readRemoteLogin(TLSubTask& step, TLKeyContext& context) {
  TLReadObserver* observer = context.source.observer();
  context.source.setObserver(nullptr);
  context.reader.readString(context.line, step.remoteLogin);
  context.source.setObserver(observer);
  step.loadBalancing.remoteLogin = step.remoteLogin;
  return TLKeyResult::next;
}

TLKeyResult readChild(TLSubTask& step, TLKeyContext& context) {
  std::int32_t tid = 0;
  const int good = context.reader.readInteger(context.line, tid);
  if (good != 0) step.children.push_back(tid);
  return nextIf(good);
}

TLKeyResult readEnabled(TLSubTask& step, TLKeyContext& context) {
  std::int32_t value = 0;
  const int good = context.reader.readInteger(context.line, value);
  if (good != 0) step.enabled = value != 0 ? 1 : 0;
  return nextIf(good);
}

TLKeyResult readStartAfterTask(TLSubTask& step, TLKeyContext& context) {
  if (step.startingDate != -2) return TLKeyResult::next;
  return nextIf(context.reader.readStrings(context.line, step.startAfterTask));
}

/// The reader knows 32 bits only, whatever the width of the field.
template <auto Member>
TLKeyResult readSize(TLSubTask& step, TLKeyContext& context) {
  std::int32_t value = 0;
  const int good = context.reader.readInteger(context.line, value);
  if (good != 0) step.*Member = value;
  return nextIf(good);
}

template <auto Member>
TLKeyResult readRecord(TLSubTask& step, TLKeyContext& context) {
  return nextIf((step.*Member).read(context.source));
}

constexpr auto kInteger = &TLTokenReader::readInteger;
constexpr auto kString = &TLTokenReader::readString;

const TLKeyTable<TLSubTask>& keys() {
  static const TLKeyTable<TLSubTask> table(
      "subtask",
      {
          {"name", "", &readMember<&TLSubTask::name, kString>},
          {"perf_curve_name", "", &readMember<&TLSubTask::perfCurveName, kString>},
          {"executable", "", &readMember<&TLSubTask::executable, kString>},
          {"hostname", "", &readHostName},
          {"remotetmpdir", "", &readMember<&TLSubTask::remoteTmpDir, kString>},
          {"remotelogin", "", &readRemoteLogin},
          {"childrenid", "", &readChild},
          {"status", "", &readMember<&TLSubTask::status, kInteger>},
          {"starting_date", "", &readMember<&TLSubTask::startingDate, kInteger>},
          {"enabled", "", &readEnabled},
          {"start_after_task", "", &readStartAfterTask},
          {"ending_date", "", &readMember<&TLSubTask::endingDate, kInteger>},
          {"waiting_task", "", &readMember<&TLSubTask::waitingTask, kInteger>},
          {"automatic_memory_estimation", "",
           &readMember<&TLSubTask::automaticMemoryEstimation, kInteger>},
          {"user_solver_precision", "", &readMember<&TLSubTask::userSolverPrecision, kInteger>},
          {"user_solver_precission", "", &readMember<&TLSubTask::userSolverPrecision, kInteger>},
          {"integer_size", "", &readSize<&TLSubTask::integerSize>},
          {"real_size", "", &readSize<&TLSubTask::realSize>},
          {"tl_begin", "load_balancing", &readRecord<&TLSubTask::loadBalancing>},
          {"tl_begin", "virtual_partition", &readRecord<&TLSubTask::virtualPartition>},
          {"tl_begin", "process_arguments", &readRecord<&TLSubTask::arguments>},
          {"tl_end", "subtask", &endBlock<TLSubTask>},
      });
  return table;
}

}  // namespace

int TLSubTask::read(TLTextSource& stream) {
  children.clear();
  if (readBlock(*this, stream, keys()) == 0) return 0;
  if (startingDate == -2 && startAfterTask.empty()) startingDate = -1;
  if (executable == "tltaskmgr.exe" || executable == "tltaskmgr") executable = kRenamedTo;
  return 1;
}

void TLSubTask::write(TLTextSink& stream) const {
  stream << "      NAME                  " << name << '\n';
  stream << "      PERF_CURVE_NAME       " << perfCurveName << '\n';
  stream << "      EXECUTABLE            " << executable << '\n';
  stream << "      HOSTNAME              " << hostName << '\n';
  stream << "      ENABLED               " << enabled << '\n';
  stream << "      REMOTETMPDIR          " << remoteTmpDir << '\n';
  stream << "      REMOTELOGIN           " << remoteLogin << '\n';
  if (!children.empty()) stream << "      CHILDRENID            " << children.front() << '\n';
  stream << "      STATUS                " << status << '\n';
  stream << "      STARTING_DATE         " << startingDate << '\n';
  stream << "      START_AFTER_TASK      " << startAfterTask << '\n';
  stream << "      ENDING_DATE           " << endingDate << '\n';
  stream << "      WAITING_task          " << waitingTask << '\n';
  stream << "      AUTOMATIC_MEMORY_ESTIMATION  " << automaticMemoryEstimation << '\n';
  stream << "      USER_SOLVER_PRECISION       " << userSolverPrecision << '\n';
  stream << "      INTEGER_SIZE          " << integerSize << '\n';
  stream << "      REAL_SIZE             " << realSize << '\n';
  stream << "      TL_BEGIN process_arguments             \n";
  arguments.write(stream);
  stream << "      TL_END process_arguments             \n";
  stream << "      TL_BEGIN load_balancing             \n";
  loadBalancing.write(stream);
  stream << "      TL_END load_balancing             \n";
  stream << "      TL_BEGIN virtual_partition             \n";
  virtualPartition.write(stream);
  stream << "      TL_END virtual_partition             \n";
}
