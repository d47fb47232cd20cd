#pragma once

#include <string>
#include <vector>

#include "taskengine/TLRunState.h"
#include "taskengine/TLTask.h"
#include "tool/TLFileReport.h"

/// A task file as the daemon's own records read it, with what there is to say about it.
class TLTaskFile {
 public:
  /// Nothing is read yet.
  explicit TLTaskFile(std::string path);
  ~TLTaskFile();
  TLTaskFile(const TLTaskFile&) = delete;
  TLTaskFile& operator=(const TLTaskFile&) = delete;

  /// True when the daemon would take the file. The reader's own console text goes to standard
  /// output when `echo` is set and nowhere otherwise.
  bool read(bool echo = false);

  /// Looks for the templates of the job scripts: one that is missing is a fault, or only a warning
  /// when a step before might still make it (`firm` false). True when none is missing.
  bool checkJobScripts(bool firm);
  /// Looks for the files that go to other hosts and for the mapping of paths of marine steps there,
  /// and, with `ask`, whether these hosts answer. A file that no step before can make is a fault
  /// when it is missing, and so is a silent host to which files have to go or where jobs are
  /// submitted; all else is a warning. True without a fault. Takes a few seconds at most.
  bool checkHosts(bool ask);

  /// As the daemon would have it; empty before a good read().
  const TLTask& task() const { return *task_; }
  /// What there is to say about the file.
  const TLFileReport& report() const { return report_; }
  /// A run of this task before its start.
  TLRunState run() const;
  /// Per step the value of its first "-steering" argument, empty without.
  std::vector<std::string> steeringFiles() const;

 private:
  std::string path_;
  Handle<TLTask> task_;
  TLFileReport report_;
};
