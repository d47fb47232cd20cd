// A task file of any contents is read, written and read again; then messages of any contents arrive
// at its steps and at the task. A line of one zero byte parts the text from the messages: each is
// sender (child, parent or stranger), tag and length, one byte each, then its body.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "doubles/TLScriptRecording.h"
#include "doubles/TLVirtualMachineRecording.h"
#include "platform/TLConsole.h"
#include "taskengine/TLTaskChildren.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

namespace {

constexpr std::int32_t kChild = 0x40002;
constexpr std::int32_t kParent = 0x40001;
constexpr std::int32_t kStranger = 0x40003;

void readAgain(const TLTask& task) {
  TLTextSink sink;
  task.write(sink);
  const auto copy = makeHandle<TLTask>();
  TLTextSource source(sink.take());
  copy->read(source);
  copy->clearSubTasks();
}

// Neither queue nor status file: both would run commands or touch the disk.
void tame(TLTask& task) {
  for (const auto& step : task.subTasks) {
    step->loadBalancing.queuingSystemActivated = 0;
    step->name = "STEP";
    step->executable = "velstra";
    step->processIds.clear();
    step->hostName = "none";
    step->status = TLSubTask::Running;
    step->children = {kChild};
    step->spawnArguments.assign(step->arguments);
    step->loadBalancing.processNames.clear();
    step->steering->name = "unknown";
  }
}

void deliver(const std::uint8_t* data, std::size_t size) {
  constexpr std::int32_t kSenders[] = {kChild, kParent, kStranger};
  constexpr std::size_t kHead = 3;
  while (size >= kHead) {
    const std::size_t length = std::min<std::size_t>(data[2], size - kHead);
    const std::uint8_t* body = data + kHead;
    recordedVirtualMachine().incoming.push_back(
        {kSenders[data[0] % 3], data[1],
         TLWireBuffer(std::vector<std::uint8_t>(body, body + length))});
    data += kHead + length;
    size -= kHead + length;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static std::ostream nowhere(nullptr);
  const TLConsoleRedirect redirect(nowhere);
  resetRecordedVirtualMachine();
  resetRecordedScript();
  recordedVirtualMachine().parent = kParent;

  const std::uint8_t* end = std::find(data, data + size, 0);
  const auto task = makeHandle<TLTaskChildren>();
  TLTextSource source(std::string(reinterpret_cast<const char*>(data), end - data));
  task->read(source);
  readAgain(*task);
  if (end != data + size && task->subTaskCount() > 0 && task->subTaskCount() < 100) {
    task->start();
    tame(*task);
    deliver(end + 1, static_cast<std::size_t>(data + size - end - 1));
    for (int i = 0; i < 4; ++i) task->superviseOnce();
  }
  task->clearSubTasks();
  return 0;
}
