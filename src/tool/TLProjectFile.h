#pragma once

#include <sstream>
#include <string>

#include "project/TLProject.h"
#include "tool/TLFileReport.h"

/// What a command needs the solvers' definitions for.
enum class TLDefinitionNeed {
  look,    ///< only looks at the file: goes without what is missing, and says so
  rewrite  ///< writes the file again: refuses when something of it would be lost
};

/// A project or run file as the daemon's own records read it, with what there is to say about it.
/// Unlike the daemon it neither waits for definition files nor ends because of one.
class TLProjectFile {
 public:
  /// Nothing is read yet.
  explicit TLProjectFile(std::string path);

  /// True when the file could be read. The readers' own console text goes to standard output when
  /// `echo` is set and nowhere otherwise.
  bool read(TLDefinitionNeed need, bool echo);

  /// To be changed; empty before a good read().
  TLProject& project() { return *project_; }
  /// Empty before a good read().
  const TLProject& project() const { return *project_; }
  /// As it was given.
  const std::string& path() const { return path_; }
  /// The file as it was read, byte for byte.
  const std::string& text() const { return text_; }
  /// For remarks of the caller's own.
  TLFileReport& report() { return report_; }
  /// What there is to say about the file.
  const TLFileReport& report() const { return report_; }

 private:
  bool definitionsSuffice(TLDefinitionNeed need);
  std::string missingDefinitions() const;
  bool readText(const std::ostringstream* unheard);

  std::string path_;
  std::string text_;
  Handle<TLProject> project_;
  TLFileReport report_;
};
