#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "taskengine/TLRunState.h"
#include "tool/TLFileKind.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// What may stand in the place of a word.
struct TLCandidate {
  std::string word;   ///< Takes the place of the last word as a whole.
  std::string about;  ///< a few words for the user; may be empty
  bool operator==(const TLCandidate&) const = default;
};

/// What a shell offers for the last word of a command line of tlctl: commands and options, running
/// tasks, their steps and settings, and files of the kind that the command takes.
class TLCompletion {
 public:
  /// `app` has all commands and must live as long as this object; `userDirectory` holds the state
  /// files of the daemons.
  TLCompletion(const CLI::App& app, std::string userDirectory);

  /// `words` stand behind "tlctl"; the last one, which may be empty, is to be completed. A
  /// candidate that ends in "/" is a directory in which the search goes on.
  std::vector<TLCandidate> candidates(const std::vector<std::string>& words) const;

 private:
  struct Line;

  Line parsed(const CLI::App& command, const std::vector<std::string>& words) const;
  std::vector<TLCandidate> commandNames(std::string_view begin) const;
  std::vector<TLCandidate> ofOption(const Line& line, const CLI::Option& option,
                                    std::string_view begin) const;
  std::vector<TLCandidate> ofPositional(const Line& line, std::string_view begin) const;
  std::vector<TLCandidate> tasks(std::string_view begin, bool ended) const;
  std::vector<TLCandidate> steps(const Line& line, std::string_view begin) const;
  std::vector<TLCandidate> settings(const Line& line, std::string_view begin) const;

  const CLI::App& app_;
  std::string userDirectory_;
};

/// Files whose path begins with `begin` and whose kind `wanted` takes, and all directories; a
/// leading "~/" is the user's home.
std::vector<TLCandidate> filesBeginning(std::string_view begin, bool (*wanted)(TLFileKind kind));

/// The command behind a shell's completion: prints a candidate a line, the word, a tabulator, and
/// what it is.
int printCompletions(const CLI::App& app, const std::vector<std::string>& words);
