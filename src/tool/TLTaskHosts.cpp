// What the steps of a task need on other hosts, looked for before anything starts.
#include <fmt/format.h>

#include <algorithm>

#include "launching/TLComposition.h"
#include "launching/TLProgramNames.h"
#include "launching/TLRemPathMapping.h"
#include "platform/TLHostForm.h"
#include "tool/TLHostProbe.h"
#include "tool/TLTaskFile.h"

namespace {

constexpr double kProbeSeconds = 6.0;

std::string withoutDomain(const std::string& host) {
  return host.substr(0, host.find('.'));
}

/// True for a step that runs elsewhere; "unknown" is a step without a host.
bool isElsewhere(const TLSubTask& step) {
  const std::string here = withoutDomain(hostForm().hostName());
  return step.enabled != 0 && step.name != "PROBES2QVK" && step.hostName != "unknown" &&
         step.hostName != "localhost" && withoutDomain(step.hostName) != here;
}

bool isMarked(const TLProcessArgument& argument) {
  return argument.hasLocalFile() != 0 && argument.localFile() != 0;
}

/// A step with files for its host, whose way of carrying doesn't need a login.
bool carriesWithoutLogin(const TLSubTask& step) {
  return step.name == "DORVEX" || step.name == "LUMBRAKE" || step.name == "Sculpt3d";
}

/// The checks of one task, whose remarks go to `report`.
class HostCheck {
 public:
  HostCheck(const TLTask& task, TLFileReport& report) : task_(task), report_(report) {}

  bool run(bool ask) {
    std::size_t position = 0;
    for (const auto& step : task_.subTasks) {
      label_ = fmt::format("step {} ({})", position++, step->name);
      if (isElsewhere(*step)) look(*step);
      madeBefore_ = madeBefore_ || step->enabled != 0;
    }
    if (ask) askHosts();
    return good_;
  }

 private:
  void remark(bool fault, const std::string& text) {
    report_.add(fault, text);
    good_ = good_ && !fault;
  }

  void look(const TLSubTask& step) {
    if (isMarineStep(step.name)) {
      lookForMapping(step);
    } else {
      lookForFiles(step);
    }
    const bool carries = hasMarkedFile(step.arguments) && !isMarineStep(step.name);
    need(step, (carries && (!step.remoteLogin.empty() || carriesWithoutLogin(step))) ||
                   (step.isQueued() && !isMarineStep(step.name)));
  }

  void lookForFiles(const TLSubTask& step) {
    bool any = false;
    for (const auto& argument : step.arguments.entries()) {
      const RWCString& value = argument->value();
      if (!isMarked(*argument) || value.empty() || value == "none" || value == "undefined")
        continue;
      any = true;
      if (hostForm().canRead(value)) continue;
      remark(!madeBefore_,
             fmt::format(
                 "{}: {}, which goes to host {}, {}", label_, value, step.hostName,
                 madeBefore_ ? "isn't there yet: a step before has to make it" : "can't be read"));
    }
    if (any && step.remoteLogin.empty() && !carriesWithoutLogin(step)) {
      remark(false, fmt::format("{}: without a REMOTELOGIN nothing is copied to host {}", label_,
                                step.hostName));
    }
  }

  void lookForMapping(const TLSubTask& step) {
    const RWCString& directory = task_.computationPath();
    RWCString there;
    if (directory.empty() || mapping_.mapPath(directory, step.hostName, there)) return;
    remark(false,
           fmt::format("{}: no \"remote paths.txt\" above {} names host {}: it gets the paths "
                       "of this host",
                       label_, directory, step.hostName));
  }

  void need(const TLSubTask& step, bool firmly) {
    const TLProbedHost host{step.hostName, step.remoteLogin, {}};
    const auto found = std::find(hosts_.begin(), hosts_.end(), host);
    const auto place = static_cast<std::size_t>(found - hosts_.begin());
    if (found == hosts_.end()) {
      hosts_.push_back(host);
      needs_.push_back({label_, false});
    }
    if (firmly && !needs_[place].firm) needs_[place] = {label_, true};
  }

  void askHosts() {
    probeHosts(hosts_, kProbeSeconds);
    for (std::size_t i = 0; i < hosts_.size(); ++i) {
      const TLProbedHost& host = hosts_[i];
      if (host.failure.empty()) continue;
      const std::string user = host.login.empty() ? "" : " as " + host.login;
      remark(needs_[i].firm, fmt::format("{}: host {} can't be reached{}: {}", needs_[i].step,
                                         host.host, user, host.failure));
    }
  }

  struct Need {
    std::string step;
    bool firm;
  };
  const TLTask& task_;
  TLFileReport& report_;
  TLRemPathMapping mapping_{"remote paths.txt", false};
  std::vector<TLProbedHost> hosts_;
  std::vector<Need> needs_;  ///< of each of them, the first step that needs it, or needs it firmly
  std::string label_;
  bool madeBefore_ = false;
  bool good_ = true;
};

}  // namespace

bool TLTaskFile::checkHosts(bool ask) {
  return HostCheck(*task_, report_).run(ask);
}
