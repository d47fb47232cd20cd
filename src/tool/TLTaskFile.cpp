#include "tool/TLTaskFile.h"

#include <fmt/format.h>

#include <optional>
#include <sstream>
#include <utility>

#include "launching/TLJobScript.h"
#include "launching/TLProgramNames.h"
#include "launching/TLQueuingSystem.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"
#include "tool/TLFileKind.h"

TLTaskFile::TLTaskFile(std::string path)
    : path_(std::move(path)), task_(makeHandle<TLTask>()), report_(path_) {}

TLTaskFile::~TLTaskFile() {
  task_->clearSubTasks();
}

bool TLTaskFile::read(bool echo) {
  auto text = hostForm().readFile(path_);
  if (!text) {
    report_.add(true, "cannot be opened: is the path right, and the file readable?");
    return false;
  }
  std::ostringstream unheard;
  std::optional<TLConsoleRedirect> redirect;
  if (!echo) redirect.emplace(unheard);
  TLTextSource source(std::move(*text));
  TLTextSink empty;
  const TLTask fresh;
  fresh.write(empty);
  report_.allowWritten(empty.text());
  source.setObserver(&report_);
  const bool good = task_->read(source) == 1;
  if (!good && !report_.hasFault()) {
    report_.add(true, fmt::format("a block is not as it should be: {}", unheard.str()));
  }
  if (good && task_->subTaskCount() == 0) {
    // What has neither a block nor a name of a task was never meant as one.
    const bool foreign = task_->name == fresh.name && !source.text().empty() &&
                         kindOfText(source.text()) == TLFileKind::unknown;
    report_.add(foreign, foreign ? "is no task file" : "holds no step: nothing would run");
    return !foreign;
  }
  return good;
}

bool TLTaskFile::checkJobScripts(bool firm) {
  bool good = true;
  for (const auto& step : task_->subTasks) {
    if (step->enabled == 0 || !step->isQueued() || isMarineStep(step->name)) continue;
    if (step->name == "PROBES2QVK") continue;
    const RWCString script =
        jobScriptPath(step->loadBalancing.queuingSystemActivated, firstValue(step->arguments));
    const auto text = hostForm().readFile(script);
    if (!text) report_.add(firm, missingTemplateText(script));
    if (text && isFilledJobScript(*text)) {
      report_.add(false,
                  fmt::format("{0} has been filled already: put its template back, {0}.orig, "
                              "before the step runs again",
                              script));
    }
    good = good && text.has_value();
  }
  return good;
}

TLRunState TLTaskFile::run() const {
  TLRunState run;
  run.taskFile = path_;
  run.taskName = task_->name;
  for (const auto& step : task_->subTasks) {
    TLRunStateStep& entry = run.steps.emplace_back();
    entry.name = step->name;
    entry.executable = step->executable;
    entry.host = step->hostName;
  }
  return run;
}

std::vector<std::string> TLTaskFile::steeringFiles() const {
  std::vector<std::string> files;
  for (const auto& step : task_->subTasks) {
    RWCString value;
    step->arguments.find("-steering", value);
    files.push_back(value);
  }
  return files;
}
