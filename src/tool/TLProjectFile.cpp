#include "tool/TLProjectFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "parameters/TLParametersDataBase.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLNumbers.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokens.h"

namespace {

/// True when a line begins with this key and, when one is asked for, this value.
bool holdsLine(std::string_view text, std::string_view key, std::string_view value) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    TLTokens tokens(text.substr(at, end - at));
    at = end + 1;
    if (!equalIgnoringCase(tokens.next(), key)) continue;
    if (value.empty() || equalIgnoringCase(tokens.next(), value)) return true;
  }
  return false;
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

}  // namespace

TLProjectFile::TLProjectFile(std::string path)
    : path_(std::move(path)), project_(makeHandle<TLProject>()), report_(path_) {}

bool TLProjectFile::read(TLDefinitionNeed need, bool echo) {
  auto text = hostForm().readFile(path_);
  if (!text) {
    report_.add(true, "cannot be opened: is the path right, and the file readable?");
    return false;
  }
  text_ = std::move(*text);
  if (!definitionsSuffice(need)) return false;
  project_->usesSteering = false;
  std::ostringstream unheard;
  std::optional<TLConsoleRedirect> redirect;
  if (!echo) redirect.emplace(unheard);
  return readText(echo ? nullptr : &unheard);
}

bool TLProjectFile::readText(const std::ostringstream* unheard) {
  TLTextSource source(text_);
  source.setObserver(&report_);
  project_->setFile(path_);
  const int result = project_->read(source);
  if (result == -1) report_.add(true, "is no project file: its first line isn't the header of one");
  if (result == 0 && !report_.hasFault()) {
    report_.stoppedAt(source, unheard == nullptr ? std::string() : unheard->str());
  }
  return result == 1;
}

bool TLProjectFile::definitionsSuffice(TLDefinitionNeed need) {
  const std::string problem = TLParametersDataBase::problem();
  if (!problem.empty() && holdsLine(text_, "tl_begin", "computation")) {
    const bool refused = need == TLDefinitionNeed::rewrite;
    report_.add(refused, (refused ? "its solver parameters would be lost: "
                                  : "solver parameters are not looked at: ") +
                             problem);
    if (refused) return false;
  }
  TLParametersDataBase::doWithout();
  const std::string missing = missingDefinitions();
  if (missing.empty()) return true;
  project_->usesDefinitions = false;
  report_.add(false, fmt::format("{} can't be read (is VELSTRA_DIR right?): values keep their "
                                 "units, and conditions their entries",
                                 missing));
  return true;
}

std::string TLProjectFile::missingDefinitions() const {
  const std::string directory = hostForm().variableOrEmpty("VELSTRA_DIR");
  const bool unstructured = holdsLine(text_, "PROJECT_TYPE", "HEXA");
  const bool automatic = holdsLine(text_, "APPLICATION_TYPE", "AUTOMOTIVE");
  std::vector<std::string> needed{"velstra.uni"};
  if (holdsLine(text_, "tl_begin", "bc_parameters")) {
    needed.push_back(!unstructured ? "velstra_bc.def"
                     : automatic   ? "lumbrake_bc_auto.def"
                                   : "lumbrake_bc.def");
  }
  std::vector<std::string> missing;
  for (const auto& name : needed) {
    const std::string path = directory + "/" + name;
    if (!hostForm().canRead(path)) missing.push_back(path);
  }
  return joined(missing);
}
