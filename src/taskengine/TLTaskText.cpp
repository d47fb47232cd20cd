#include "parameters/TLFile.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLTask.h"
#include "textio/TLKeyTable.h"

namespace {

TLKeyResult readHostName(TLTask& task, TLKeyContext& context) {
  const int good = context.reader.readString(context.line, task.hostName);
  if (good == 0) return TLKeyResult::failed;
  task.loadBalancing.hostName = task.hostName;
  task.updateHostKind();
  return TLKeyResult::next;
}

TLKeyResult readChild(TLTask& task, TLKeyContext& context) {
  std::int32_t tid = 0;
  const int good = context.reader.readInteger(context.line, tid);
  if (good != 0) task.addChild(tid);
  return nextIf(good);
}

template <auto Member>
TLKeyResult readPath(TLTask& task, TLKeyContext& context) {
  context.reader.readStrings(context.line, task.*Member);
  return TLKeyResult::next;
}

TLKeyResult readStartAfterTask(TLTask& task, TLKeyContext& context) {
  if (task.startingDate != -2) return TLKeyResult::next;
  return nextIf(context.reader.readStrings(context.line, task.startAfterTask));
}

TLKeyResult readSubTask(TLTask& task, TLKeyContext& context) {
  const auto step = makeHandle<TLSubTask>();
  if (step->read(context.source) == 0) return TLKeyResult::failed;
  task.addSubTask(step);
  return TLKeyResult::next;
}

TLKeyResult readArguments(TLTask& task, TLKeyContext& context) {
  TLProcessArguments list;
  if (list.read(context.source) == 0) return TLKeyResult::failed;
  task.arguments.assign(list);
  return TLKeyResult::next;
}

constexpr auto kInteger = &TLTokenReader::readInteger;
constexpr auto kString = &TLTokenReader::readString;
constexpr auto kStrings = &TLTokenReader::readStrings;

const TLKeyTable<TLTask>& keys() {
  static const TLKeyTable<TLTask> table(
      "task", {
                  {"perf_curve_name", "", &readMember<&TLTask::perfCurveName, kString>},
                  {"executable", "", &readMember<&TLTask::executable, kString>},
                  {"hostname", "", &readHostName},
                  {"childrenid", "", &readChild},
                  {"local_computation_path", "", &readPath<&TLTask::localComputationPath>},
                  {"computation_file_name", "", &readPath<&TLTask::computationFileName>},
                  {"name", "", &readMember<&TLTask::name, kStrings>},
                  {"status", "", &readMember<&TLTask::status, kInteger>},
                  {"starting_date", "", &readMember<&TLTask::startingDate, kInteger>},
                  {"start_after_task", "", &readStartAfterTask},
                  {"endingdate", "", &readMember<&TLTask::endingDate, kInteger>},
                  {"temporary", "", &readMember<&TLTask::temporary, kInteger>},
                  {"apply_to_all_subtasks", "", &readMember<&TLTask::applyToAllSubtasks, kInteger>},
                  {"task_type", "", &readMember<&TLTask::taskType, kInteger>},
                  {"tl_begin", "subtask", &readSubTask},
                  {"tl_begin", "process_arguments", &readArguments},
                  {"tl_end", "task", &endBlock<TLTask>},
              });
  return table;
}

}  // namespace

int TLTask::read(TLTextSource& stream) {
  clearSubTasks();
  localComputationPath.clear();
  computationFileName.clear();
  children.clear();
  if (readBlock(*this, stream, keys()) == 0) return 0;
  if (startingDate == -2 && startAfterTask.empty()) startingDate = -1;
  if (localComputationPath.empty()) deduceComputationPath();
  return 1;
}

void TLTask::deduceComputationPath() {
  for (const auto& step : subTasks) {
    if (step->name != "QUOREL_CFD") continue;
    for (const auto& argument : step->arguments.entries()) {
      if (argument->isOption()) continue;
      const TLFile file(argument->value());
      localComputationPath = file.directory();
      computationFileName = RWCString(file.name());
      return;
    }
    return;
  }
}

int TLTask::readFile(const RWCString& path) {
  auto text = hostForm().readFile(path);
  if (!text) return 0;
  fileName = path;
  TLTextSource source(std::move(*text));
  return read(source);
}

void TLTask::write(TLTextSink& stream) const {
  TLSubTask::write(stream);
  stream << "      TEMPORARY              " << temporary << '\n';
  stream << "      APPLY_TO_ALL_SUBTASKS  " << applyToAllSubtasks << '\n';
  stream << "      TASK_TYPE              " << taskType << '\n';
  stream << "      LOCAL_COMPUTATION_PATH " << localComputationPath << '\n';
  stream << "      COMPUTATION_FILE_NAME  " << computationFileName << '\n';
  for (const auto& step : subTasks) {
    stream << "      TL_BEGIN subtask             \n";
    step->write(stream);
    stream << "      TL_END subtask             \n";
  }
}
