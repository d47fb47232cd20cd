#include "launching/TLJobScript.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <utility>

#include "balancing/TLLoadBalancing.h"
#include "launching/TLCommands.h"
#include "launching/TLComposition.h"
#include "launching/TLQueueCommand.h"
#include "launching/TLQueuingKind.h"
#include "messaging/TLVirtualMachine.h"
#include "parameters/TLFile.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokens.h"

namespace {

constexpr std::int32_t kSge = 1;
constexpr std::int32_t kPbs = 2;
constexpr std::int32_t kDrawnNumbers = 9998;
constexpr std::int32_t kLargestRandom = 32767;
constexpr std::size_t kFewestDigits = 3;

constexpr std::string_view kFrame = "##################################\n";
constexpr std::string_view kStart = "# COMPUTATION SETTINGS ... START #\n";
constexpr std::string_view kEnd = "# COMPUTATION SETTINGS ... END   #\n";

/// Programs that start their processes from one more.
constexpr auto kWithLauncher = std::to_array<std::string_view>(
    {"velstraTurbo", "velstraTurbodp", "velstra.exe", "velstradp.exe"});

bool holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// A value in the script's own language: single quotes around what a shell would act on. Windows
/// paths stand as they are for a host that has such.
RWCString scriptValue(const RWCString& value, bool win32Host) {
  const bool win32 = hostForm().kind() == TLHostKind::win32;
  const auto plain = [win32, win32Host](char c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return letter || holds("._/-+,:=@%", {&c, 1}) || (win32 && c == ' ') ||
           ((win32 || win32Host) && c == '\\');
  };
  if (std::all_of(value.begin(), value.end(), plain)) return value;
  RWCString quoted = "'";
  for (const char c : value) quoted += c == '\'' ? RWCString("'\\''") : RWCString(1, c);
  return quoted + "'";
}

bool holdsBlank(const RWCString& value) {
  return value.find_first_of(" \t") != RWCString::npos;
}

/// A value as one word of a line for the queuing system, to the shell a comment.
RWCString directiveValue(const RWCString& value) {
  if (!holdsBlank(value)) return value;
  const char quote = holds(value, "\"") ? '\'' : '"';
  return quote + value + quote;
}

/// SGE takes all that follows a quoted word for a part of it: such a word has to be the last.
RWCString sgeOutput(const RWCString& file) {
  const RWCString word = directiveValue(file);
  return word == file ? "#$ -o " + file + " -j y \n" : "#$ -j y -o " + word + "\n";
}

RWCString settingsBlock(const TLJobScriptValues& values) {
  const RWCString steering = TLFile::onOtherHost(values.runFile).withoutSuffix() + ".steering";
  RWCString text(kFrame);
  text.append(kStart).append(kFrame).append("\n");
  text += "TL_SUBMISSION_HOST=" + scriptValue(values.hostName, values.win32) + "\n";
  text += "RUN_FILE=" + scriptValue(values.runFile, values.win32) + "\n";
  text += "STEERING1=-steering\n";
  text += "STEERING2=" + scriptValue(steering, values.win32) + "\n";
  text += "PREC=" + scriptValue(values.precision, values.win32) + "\n\n";
  text.append(kFrame).append(kEnd).append(kFrame).append("\n");
  return text;
}

RWCString directives(const TLJobScriptValues& values) {
  const RWCString queue = directiveValue(values.queue);
  const RWCString slots = std::to_string(jobSlots(values.processors, values.executable));
  const RWCString file = withRunReplaced(values.runFile, ".std");
  const RWCString output = directiveValue(file);
  const RWCString head =
      "# Specify a MPI job on " + std::to_string(values.processors) + " processors \n";
  const RWCString redirection = "# standard output redirection\n";
  const RWCString same = " standard error redirected in the same file as the standard output\n";
  if (values.kind == kSge) {
    return head + "#$ -pe " + queue + " " + slots + "\n#$ -N comp" + values.number + "\n" +
           redirection + "# -j y" + same + sgeOutput(file) + "\n";
  }
  if (values.kind == kPbs) {
    return head + "#PBS -q " + queue + " -lselect=" + slots + ":ncpus=1\n#PBS -N comp" +
           values.number + "\n" + redirection + "# -j oe" + same + "#PBS -o " + output +
           " -j oe\n\n";
  }
  return head + "#BSUB -q " + queue + " -n " + slots + "\n#BSUB -J comp" + values.number + "\n" +
         redirection + "#BSUB -oo " + output + " -eo " + output + "\n\n";
}

std::int32_t drawnNumber() {
  return hostForm().randomNumber() * kDrawnNumbers / kLargestRandom + 1;
}

/// Looks whether the queue answers at all. The names in use are not held against the number that is
/// drawn: its range keeps them apart.
void lookAtQueue(const TLLoadBalancing& record, const TLQueuingKind& kind) {
  const RWCString name = "tmpout_queuing_system_qstat" + std::to_string(drawnNumber());
  const auto answer = askQueue(record.hostName, RWCString(kind.list), record.remoteLogin, name);
  if (!answer) console() << kind.word << " gave no listing of its jobs\n" << std::flush;
}

bool complain(const RWCString& text) {
  console() << text << '\n' << std::flush;
  return false;
}

[[noreturn]] void endWithoutTmpDir() {
  console() << "**** TLLoadBalancing::create_queuing_system_script, ERROR: Check TMP_DIR env. "
               "variable \n"
            << std::flush;
  std::exit(0);
}

[[noreturn]] void abortWithoutTemplate(const RWCString& scriptFile) {
  console() << missingTemplateText(scriptFile) << '\n'
            << "**** Cannot Open SGE script file, Check the file \n"
            << scriptFile << '\n'
            << std::flush;
  std::abort();
}

/// Keeps a template as it was before its first filling.
bool keepTemplate(const RWCString& scriptFile, const RWCString& text) {
  const RWCString kept = scriptFile + ".orig";
  if (isFilledJobScript(text) || hostForm().canRead(kept)) return true;
  if (hostForm().isLink(kept)) return complain(kept + " is a symbolic link: refused");
  return hostForm().replaceFile(kept, text) == 0 ||
         complain(kept + " can't be written: the job script is left as it is");
}

bool putInPlace(const RWCString& scriptFile, const RWCString& text) {
  TLHostForm& form = hostForm();
  const RWCString temporary =
      form.variableOrEmpty("TMP_DIR") + "/tmpfile" + std::to_string(form.processId());
  if (form.isLink(temporary)) return complain(temporary + " is a symbolic link: refused");
  if (form.replaceFile(temporary, text) != 0) return complain(temporary + " can't be written");
  moveLocal(temporary, scriptFile);
  const auto there = form.readFile(scriptFile);
  return (there && *there == text) || complain(scriptFile + " can't be replaced by the filled one");
}

}  // namespace

RWCString jobScriptPath(std::int32_t kind, const RWCString& runFile) {
  const TLQueuingKind* system = queuingKind(kind);
  return system == nullptr ? runFile : withRunReplaced(runFile, RWCString(system->extension));
}

std::int32_t jobSlots(std::int32_t processors, const RWCString& executable) {
  const bool launcher =
      std::any_of(kWithLauncher.begin(), kWithLauncher.end(),
                  [&executable](std::string_view name) { return holds(executable, name); });
  return launcher && processors != 1 ? processors + 1 : processors;
}

RWCString jobNumberText(std::int32_t number) {
  const RWCString digits = std::to_string(number);
  return RWCString(kFewestDigits - std::min(kFewestDigits, digits.size()), '0') + digits;
}

RWCString jobScriptFault(const TLJobScriptValues& values) {
  const std::array<std::pair<const char*, const RWCString*>, 2> words = {
      {{"the queue's name", &values.queue}, {"the run file's name", &values.runFile}}};
  for (const auto& [what, word] : words) {
    if (word->find_first_of("\r\n") != RWCString::npos) {
      return RWCString(what) + " holds a line end, which no line of a job script can hold";
    }
    if (holdsBlank(*word) && holds(*word, "\"") && holds(*word, "'")) {
      return RWCString(what) +
             " holds blanks and both kinds of quotes, which no job script can hold";
    }
  }
  return {};
}

RWCString filledJobScript(const RWCString& text, const TLJobScriptValues& values) {
  TLTextSource lines(text);
  RWCString filled;
  bool inserted = false;
  std::string_view line;
  while (lines.readRawLine(line)) {
    line = line.substr(0, line.find_last_not_of("\r ") + 1);
    if (line.starts_with('#') && holds(line, "COMPUTATION") && holds(line, "SETTINGS")) {
      filled += settingsBlock(values);
      continue;
    }
    if (line.empty() && !inserted) {
      filled += directives(values);
      inserted = true;
    }
    filled.append(line).append("\n");
  }
  return filled;
}

RWCString jobNameIn(const RWCString& script, std::int32_t kind) {
  const TLQueuingKind* system = queuingKind(kind);
  if (system == nullptr) return {};
  TLTextSource lines(script);
  std::string_view line;
  while (lines.readRawLine(line)) {
    TLTokens words(line);
    if (words.next() == system->directive && words.next() == system->nameFlag) {
      return RWCString(words.next());
    }
  }
  return {};
}

bool isFilledJobScript(const RWCString& script) {
  return holds(script, kStart);
}

RWCString missingTemplateText(const RWCString& scriptFile) {
  return "The template of the job script, " + scriptFile +
         ", can't be read: put one beside the run file under this name, or switch the queuing "
         "system of the step off.";
}

bool createQueuingSystemScript(const TLLoadBalancing& record, RWCString& path,
                               const RWCString& executable, const RWCString& runFile,
                               const RWCString& precisionWord, const RWCString& scriptFile) {
  if (!hostForm().variable("TMP_DIR")) endWithoutTmpDir();
  const TLQueuingKind* kind = queuingKind(record.queuingSystemActivated);
  if (kind == nullptr) return complain("no queuing system has this number");
  lookAtQueue(record, *kind);
  const TLJobScriptValues values{record.queuingSystemActivated,
                                 record.hostName,
                                 runFile,
                                 precisionWord,
                                 record.queuingSystemQueue,
                                 record.nbQueuingSystemProcessor,
                                 executable,
                                 jobNumberText(drawnNumber()),
                                 readsWin32Words(record.hostName, hostIsWin32(record.hostName))};
  const auto text = hostForm().readFile(scriptFile);
  if (!text) abortWithoutTemplate(scriptFile);
  const RWCString fault = jobScriptFault(values);
  if (!fault.empty()) return complain(fault);
  if (!keepTemplate(scriptFile, *text)) return false;
  if (!putInPlace(scriptFile, filledJobScript(*text, values))) return false;
  path = scriptFile;
  return true;
}
