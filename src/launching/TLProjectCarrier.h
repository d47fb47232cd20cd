#pragma once

#include <map>
#include <set>

#include "launching/TLCarryList.h"
#include "parameters/TLFile.h"

class TLProject;
class TLSubProject;

/// Puts one file with all that belongs to it on the list of a transfer. A project takes its mesh,
/// its geometry, what it starts from and what its conditions read along, and goes itself with the
/// far paths in it; any other file goes as it is.
class TLProjectCarrier {
 public:
  /// `list` must outlive this object.
  explicit TLProjectCarrier(TLCarryList& list) : list_(list) {}

  /// `file` goes into `directory` of the far side, under its name.
  void transferProject(const RWCString& file, const RWCString& directory);

 private:
  void carryReference(TLSubProject& computation);
  void carryMesh(TLProject& project);
  void carryGeometry(TLProject& project);
  void carryTables(TLSubProject& computation);
  void carryInitialSolutions(TLSubProject& computation);
  void carryPatchFiles(TLSubProject& computation);
  /// The project goes as `target`, by way of a file beside `path`.
  void carryText(const TLProject& project, const RWCString& path, const RWCString& target);

  /// `path` there, under its own name; under another when that name is taken by another file.
  RWCString farPath(const RWCString& path);
  void carryIfThere(const RWCString& path, const RWCString& target, bool needed);

  TLCarryList& list_;
  RWCString directory_;
  std::map<RWCString, RWCString> patchFiles_;  ///< far path of what goes along already
  std::set<RWCString> farNames_;
};
