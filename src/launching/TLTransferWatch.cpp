#include "launching/TLTransferWatch.h"

#include "launching/TLCommands.h"
#include "launching/TLLaunchLines.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLSubTask.h"
#include "textio/TLTextSource.h"

namespace {

constexpr int kShownLines = 6;

}  // namespace

bool saysNothingThere(const RWCString& words, const RWCString& path) {
  bool said = false;
  TLTextSource lines{std::string(words)};
  for (auto line = lines.readLine(); !line.empty(); line = lines.readLine()) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
    if (line.starts_with("tlrcp: copy failed")) continue;
    const bool absent = line.ends_with("No such file or directory") ||
                        line.ends_with("no such directory") ||
                        line.find("no matches found") != std::string_view::npos;
    if (!line.ends_with("No match.") && !(absent && line.find(path) != std::string_view::npos)) {
      return false;
    }
    said = true;
  }
  return said;
}

RWCString asOneLine(const RWCString& words) {
  RWCString result;
  TLTextSource lines{std::string(words)};
  int count = 0;
  for (auto line = lines.readLine(); !line.empty() && count < kShownLines;
       line = lines.readLine()) {
    result +=
        (count++ == 0 ? "" : "; ") + RWCString(line.substr(0, line.find_last_not_of(" \t\r") + 1));
  }
  return result;
}

TLTransferWatch::TLTransferWatch(TLSubTask& step, const TLFarSide& far, const char* direction,
                                 std::int32_t count, std::int64_t total)
    : step_(step), far_(far) {
  step.transfer = {};
  step.transfer.direction = direction;
  step.transfer.host = far.host();
  step.transfer.count = count;
  step.transfer.total = total;
  tellTransferObserver();
}

TLTransferWatch::~TLTransferWatch() {
  TLTransferProgress& progress = step_.transfer;
  progress.direction.clear();
  progress.file.clear();
  tellTransferObserver();
}

void TLTransferWatch::begin(const RWCString& file, std::int64_t bytes) {
  TLTransferProgress& progress = step_.transfer;
  progress.bytes += progress.fileBytes;
  progress.file = file;
  progress.fileBytes = bytes;
  ++progress.number;
  tellTransferObserver();
}

bool TLTransferWatch::send(const RWCString& here, const RWCString& there, bool tree,
                           std::int64_t bytes) {
  begin(here, bytes);
  (tree ? remoteCopyTree : remoteCopy)({}, here, far_.spec(), there, far_.system());
  const TLCopyReport& report = lastCopyReport();
  if (!report.failed) return true;
  // Nothing here by that pattern: there was nothing to carry.
  if (here.ends_with('*') && bytes == 0 && saysNothingThere(report.words, here)) return true;
  complain("Copy of " + here + " to " + place(there) + " failed: " + asOneLine(report.words));
  return false;
}

bool TLTransferWatch::fetch(const RWCString& there, const RWCString& here, bool tree,
                            bool expected) {
  begin(there, 0);
  (tree ? remoteCopyTree : remoteCopy)(far_.spec(), there, {}, here, far_.system());
  const TLCopyReport& report = lastCopyReport();
  if (!report.failed) return true;
  TLHostForm& form = hostForm();
  const bool roomHere =
      form.canMakeFilesIn(form.isDirectory(here) ? here : RWCString(form.directoryOf(here)));
  if (!expected && roomHere && saysNothingThere(report.words, there)) return true;
  complain("Retrieval of " + place(there) + " to " + here + " failed: " + asOneLine(report.words));
  return false;
}

void TLTransferWatch::complain(const RWCString& text) {
  failed_ = true;
  RWCString& problem = step_.transfer.problem;
  // A start ends with its last copy; a retrieval goes on, and its first is what went wrong.
  if (problem.empty() || step_.transfer.direction == "to") problem = text;
  console() << text << '\n' << std::flush;
  sayToScript(text);
}
