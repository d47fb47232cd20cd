#include "launching/TLProjectReading.h"

#include "launching/TLLaunchLines.h"
#include "launching/TLPathText.h"
#include "parameters/TLParametersDataBase.h"
#include "platform/TLHostForm.h"
#include "project/TLProject.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokenReader.h"

namespace {

bool startsComputation(std::string_view line) {
  return TLTokenReader::lineHasToken(line, "tl_begin") &&
         TLTokenReader::lineHasToken(line, "computation");
}

/// True when the text has something for which the structured solver's parameters are needed.
bool holdsComputation(const RWCString& text) {
  TLTextSource source(text);
  for (auto line = source.readLine(); !line.empty(); line = source.readLine()) {
    if (startsComputation(line)) return true;
  }
  return false;
}

/// True when every definition file that the reading of a project loads is there. A process that
/// asks for one that is missing would end.
bool definitionsInstalled(bool unstructured) {
  TLHostForm& form = hostForm();
  const RWCString directory = form.variableOrEmpty("VELSTRA_DIR");
  const RWCString solver = unstructured ? "/lumbrake" : "/velstra";
  for (const RWCString& file :
       {RWCString("/velstra.uni"), solver + "_steering.def", solver + "_bc.def"}) {
    if (!form.canRead(directory + file)) return false;
  }
  return true;
}

/// Read without the solver's parameters, a run file would be written back without its own: the
/// launch stays here until the definition file is there.
void waitForParameters() {
  const RWCString problem = TLParametersDataBase::problem();
  if (!problem.empty()) {
    sayToScript("The launch waits for the solver's definitions. " + problem);
  }
  TLParametersDataBase::instance();
}

}  // namespace

int readProject(TLProject& project, const RWCString& path, bool unstructuredTables) {
  auto text = hostForm().readFile(path);
  if (!text) return 0;
  if (holdsComputation(*text)) waitForParameters();
  project.usesDefinitions = definitionsInstalled(unstructuredTables);
  project.projectFile = TLFile(path);
  TLTextSource source(std::move(*text));
  return project.read(source);
}

bool wantsUnstructuredTables(std::string_view text) {
  TLTextSource source{std::string(text)};
  for (auto line = source.readLine(); !line.empty(); line = source.readLine()) {
    if (startsComputation(line)) return false;
    if (!TLTokenReader::lineHasToken(line, "PROJECT_TYPE")) continue;
    return TLTokenReader::lineHasToken(line, "HEXA") || TLTokenReader::lineHasToken(line, "MARINE");
  }
  return false;
}
