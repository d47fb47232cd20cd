#include "project/TLSolverDefinitions.h"

#include <cstdlib>
#include <string>
#include <utility>

#include "project/TLProjectType.h"

TLBCDataBase& TLSolverDefinitions::conditions(std::int32_t projectType, std::int32_t solverMode) {
  // What is loaded: the unstructured solver's own mode, or -1 for the structured one, and from
  // where.
  static std::pair<int, std::string> loaded{-2, {}};
  const bool unstructured = projectType == TLProjectType::hexa;
  const char* directory = std::getenv("VELSTRA_DIR");
  std::pair<int, std::string> wanted{unstructured ? solverMode : -1,
                                     directory == nullptr ? "" : directory};
  TLBCDataBase& base = TLBCDataBase::instance();
  if (wanted != loaded) {
    base.load(projectType, solverMode);
    loaded = std::move(wanted);
  }
  return base;
}
