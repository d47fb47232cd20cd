#include "tool/TLTaskFile.h"

#include <fmt/format.h>

#include <optional>
#include <sstream>
#include <utility>

#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLTextSource.h"

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
  source.setObserver(&report_);
  const bool good = task_->read(source) == 1;
  if (!good && !report_.hasFault()) {
    report_.add(true, fmt::format("a block is not as it should be: {}", unheard.str()));
  }
  if (good && task_->subTaskCount() == 0) report_.add(false, "holds no step: nothing would run");
  return good;
}

std::vector<TLStepLabel> TLTaskFile::steps() const {
  std::vector<TLStepLabel> steps;
  for (const auto& step : task_->subTasks) {
    steps.push_back({step->name, step->executable, step->hostName});
  }
  return steps;
}
