#include "launching/TLStartFiles.h"

#include <array>

#include "launching/TLPathText.h"
#include "platform/TLHostForm.h"
#include "textio/TLTextSink.h"

namespace {

/// The words of one argument in a batch file, each followed by a blank.
void writeBatchArgument(TLTextSink& sink, const TLLaunchDraft& draft, std::int32_t index) {
  const TLProcessArgument& argument = *draft.spawnArguments.at(index);
  const RWCString& type = argument.type();
  const RWCString& value = argument.value();
  if (type == "-parendId" || type == "-taskmanager") return;
  if (type == "-p4pg") {
    sink << "-p4pg " << quotePlain(draft.p4pgFile) << ' ';
    return;
  }
  if (type != "none") sink << type << ' ';
  if (draft.executable == "mpirun.exe" && index == 0) {
    sink << quotePlain(draft.p4pgFile) << ' ';
  } else if (value != "none" && !value.empty()) {
    sink << quotePlain(value) << ' ';
  }
}

/// One line for each generation: the number of its processes and their names.
void writeGroup(TLTextSink& sink, const char* title, std::size_t count,
                const TLLoadBalancing::Generations& generations) {
  sink << title << ' ' << count << '\n';
  for (std::size_t i = 0; i < count; ++i) {
    static const std::vector<RWCString> kNone;
    const auto& processes = i < generations.size() ? generations[i] : kNone;
    sink << processes.size();
    for (const auto& process : processes) sink << ' ' << process;
    sink << '\n';
  }
}

}  // namespace

RWCString batchFileText(const TLLaunchDraft& draft, const RWCString& suiteDirectory,
                        char separator) {
  TLTextSink sink;
  if (draft.win32) {
    sink << suiteDirectory << separator << "bin64" << separator;
  } else {
    sink << "#! /bin/sh\n";
  }
  sink << draft.executable << ' ';
  const auto count = std::min(draft.spawnArguments.count(), draft.arguments.count());
  for (std::int32_t i = 0; i < count; ++i) writeBatchArgument(sink, draft, i);
  if (draft.win32) sink << "-batch ";
  return sink.take();
}

int writeBatchFile(const RWCString& path, const RWCString& base, const RWCString& text) {
  TLHostForm& form = hostForm();
  if (path == base) {
    const auto former = form.readFile(path);
    if (former && *former != text) form.replaceFile(path + ".orig", *former);
  }
  return form.replaceFile(path, text) == 0 ? 1 : 0;
}

RWCString procDistribText(const TLLoadBalancing& loadBalancing) {
  struct Group {
    const char* title;
    TLLoadBalancing::Generations TLLoadBalancing::*generations;
  };
  static constexpr auto kGroups = std::to_array<Group>({
      {"GEOM_GENERATOR", &TLLoadBalancing::geomGeneration},
      {"MESH_GENERATOR", &TLLoadBalancing::meshGeneration},
      {"FLOW_SOLVER", &TLLoadBalancing::flowSolverGeneration},
      {"POST_PROCESSING", &TLLoadBalancing::postTreatmentGeneration},
      {"FEA_MESH_GENERATOR", &TLLoadBalancing::feaMeshGeneration},
      {"FEA_SOLVER", &TLLoadBalancing::feaSolverGeneration},
      {"FEA_POST_PROCESSING", &TLLoadBalancing::feaPostTreatmentGeneration},
  });
  TLTextSink sink;
  sink << "SCULPT3D\n# written by TLSubTask\n";
  for (const auto& group : kGroups) {
    writeGroup(sink, group.title, loadBalancing.designGenerations.size(),
               loadBalancing.*group.generations);
  }
  return sink.take();
}

void writeProcDistrib(const RWCString& path, const TLLoadBalancing& loadBalancing) {
  hostForm().replaceFile(path, procDistribText(loadBalancing));
}

RWCString withLineFeeds(const RWCString& text) {
  RWCString result;
  result.reserve(text.size() + 1);
  for (std::size_t start = 0; start < text.size();) {
    auto end = text.find('\n', start);
    if (end == RWCString::npos) end = text.size();
    const bool carriageReturn = end > start && text[end - 1] == '\r';
    result.append(text, start, end - start - (carriageReturn ? 1 : 0));
    result += '\n';
    start = end + 1;
  }
  return result;
}

void normaliseLineEnds(const RWCString& path) {
  const RWCString text = hostForm().readFile(path).value_or("");
  hostForm().replaceFile(path, withLineFeeds(text));
}
