#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cstring>
#include <memory>

#include "platform/TLHostForm.h"
#include "taskengine/TLKeptRun.h"
#include "tool/TLAnswer.h"
#include "tool/TLCommands.h"
#include "tool/TLDaemonFinder.h"
#include "tool/TLExitCode.h"
#include "tool/TLReportPage.h"
#include "tool/TLRunView.h"

namespace {

struct ReportOptions {
  std::string task;
  std::string output;
  bool json = false;
};

// The newest run that `who` means, whether it runs, has ended or was killed: what its daemon left,
// brought up to what its state file says.
std::optional<TLKeptRun> findRun(const std::string& directory, const std::string& who) {
  std::optional<TLKeptRun> found;
  for (auto& kept : TLKeptRun::list(directory)) {
    if (!who.empty() && !isMeant(kept.run, who)) continue;
    found = std::move(kept);
    break;  // the newest is first
  }
  for (auto& state : TLRunState::list(directory)) {
    if (!who.empty() && !isMeant(state, who)) continue;
    if (found && state.started < found->run.started) continue;
    if (!found || state.pid != found->run.pid) found.emplace();
    found->run = std::move(state);
    found->steps.resize(found->run.steps.size());
  }
  return found;
}

int report(const ReportOptions& options) {
  const TLToolEnvironment environment;
  const auto kept = findRun(environment.userDirectory(), options.task);
  if (!kept) {
    complain(
        "report",
        options.task.empty()
            ? "there is no record of any run; make one with \"tlctl run TASK\""
            : fmt::format("there is no record of a run of \"{}\" in {}; name its task file, or "
                          "the task",
                          options.task, environment.userDirectory()));
    return TLExitCode::kNobodyThere;
  }
  const bool live = kept->ended <= 0 && isLive(kept->run);
  const std::string page = TLReportPage(*kept, live, secondsNow()).html();
  const int failure = hostForm().replaceFile(options.output, page);
  if (failure != 0) {
    complain("report", fmt::format("cannot write {}: {}", options.output, std::strerror(failure)));
    return TLExitCode::kStepFailed;
  }
  if (options.json) {
    auto body = statusJson(kept->run);
    body["live"] = live;
    body["output"] = options.output;
    printAnswer("report", std::move(body));
  } else {
    fmt::print("{}: {}\n", options.output, countText(kept->run));
  }
  return TLExitCode::kOk;
}

}  // namespace

std::vector<TLCommand> reportCommands() {
  return {{"report",
           "Write a page about the last run of a task: steps, times, residuals, reasons, blocks",
           {"tlctl report heat.task -o report.html", "tlctl report -o report.html"},
           [](CLI::App& app) -> std::function<int()> {
             auto options = std::make_shared<ReportOptions>();
             app.add_option("TASK", options->task,
                            "task file, task name or daemon; the last run if left out");
             app.add_option("-o,--output", options->output, "page to write (HTML)")->required();
             declareJson(app, options->json);
             return [options] { return report(*options); };
           }}};
}
