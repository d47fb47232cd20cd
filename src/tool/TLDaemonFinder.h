#pragma once

#include <optional>
#include <string>
#include <vector>

#include "taskengine/TLRunState.h"

/// Finds the daemons of this user by their state files.
class TLDaemonFinder {
 public:
  /// `userDirectory` is where the daemons of this user put their state files.
  explicit TLDaemonFinder(std::string userDirectory) : userDirectory_(std::move(userDirectory)) {}

  /// All runs with a state file, those of killed daemons included, oldest first.
  std::vector<TLRunState> all() const;
  /// Those whose process is there. State files of other hosts count as live.
  std::vector<TLRunState> live() const;

  /// The live daemon that `who` means: path of its task file, name of its task, or its tid; empty
  /// means the only one there is. None when there is no such daemon or more than one fits; `error`
  /// then says what to do.
  std::optional<TLRunState> find(const std::string& who, std::string& error) const;

 private:
  std::string userDirectory_;
};

/// The position of the step that `word` means: a position, or the name of one step alone. None when
/// there is no such step; `error` then says what there is.
std::optional<int> findStep(const TLRunState& state, const std::string& word, std::string& error);

/// True when the process of the state file exists on this host, or can't be seen from here.
bool isLive(const TLRunState& state);
/// True when `who` names this run: by the path of its task file, its task, or its daemon.
bool isMeant(const TLRunState& state, const std::string& who);
/// The full path of a file, links resolved where it exists.
std::string fullPath(const std::string& path);
