#include "launching/TLRunFile.h"

#include <cstdlib>
#include <string_view>

#include "launching/TLLaunchLines.h"
#include "launching/TLPathText.h"
#include "parameters/TLParametersDataBase.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "project/TLProject.h"
#include "project/TLProjectType.h"
#include "textio/TLTokenReader.h"

namespace {

/// True when the text has something for which the structured solver's parameters are needed.
bool holdsComputation(const RWCString& text) {
  TLTextSource source(text);
  for (auto line = source.readLine(); !line.empty(); line = source.readLine()) {
    if (TLTokenReader::lineHasToken(line, "tl_begin") &&
        TLTokenReader::lineHasToken(line, "computation")) {
      return true;
    }
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

void say(const RWCString& phrase) {
  tellScript(messageLine('"' + scriptQuoted(doubleBackslashes(phrase)) + '"'));
}

/// The run file as a project.
class ProjectRunFile : public TLRunFile {
 public:
  TLRunFileFacts read(const RWCString& path, bool unstructuredTables) override {
    path_ = path;
    project_ = makeHandle<TLProject>();
    auto text = hostForm().readFile(path);
    if (!text) return {};
    if (holdsComputation(*text)) waitForParameters();
    project_->usesDefinitions = definitionsInstalled(unstructuredTables);
    project_->projectFile = TLFile(path);
    TLTextSource source(std::move(*text));
    if (project_->read(source) != 1) {
      project_ = makeHandle<TLProject>();
      return {};
    }
    return facts();
  }

  void setTaskCount(std::int32_t count) override { setParameter("NTASK,I,1,1,0", count); }
  void setCommunication(std::int32_t value) override { setParameter("ICOMP,I,1,1,0", value); }

  std::int32_t blockCount() const override {
    return first() == nullptr ? 0 : static_cast<std::int32_t>(first()->grid->blocks.size());
  }

  void balance(TLLoadBalancing& balancing) override {
    balancing.projectFile = path_;
    if (first() == nullptr || !balancing.setup(*project_)) return;
    balancing.balance();
  }

  void setProcesses(const std::function<std::int32_t(std::int32_t)>& processOfBlock) override {
    for (std::int32_t i = 0; i < blockCount(); ++i) {
      std::int32_t& process = first()->grid->blocks[i]->processId;
      change(process, processOfBlock(i));
    }
  }

  void setMemory(std::int64_t integerSize, std::int64_t realSize) override {
    if (first() == nullptr) return;
    change(first()->memoryEstimationInteger, static_cast<double>(integerSize));
    change(first()->memoryEstimationReal, static_cast<double>(realSize));
  }

  void storeSteering(const Handle<TLSteeringParameters>& steering) override {
    project_->steering = steering;
  }

  /// The text is formed again only when something of it has changed.
  void write() override {
    if (changed_) {
      TLTextSink sink;
      sink.reserve(text_.size());
      project_->write(sink);
      text_ = sink.take();
      changed_ = false;
    }
    int error = 0;
    TLHostForm& form = hostForm();
    const bool refused = form.canRead(path_) && !form.canWrite(path_, error);
    if (refused || form.replaceFile(path_, text_) != 0) {
      console() << "File " << path_ << " is not writable.\n" << std::flush;
    }
  }

 private:
  TLSubProject* first() const { return project_->currentComputation.get(); }

  template <class T>
  void change(T& value, T wanted) {
    changed_ = changed_ || value != wanted;
    value = wanted;
  }

  void setParameter(std::string_view descriptor, std::int32_t value) {
    if (first() == nullptr || !first()->parameters) return;
    const std::vector<std::int32_t> wanted{value};
    if (first()->parameters->integers(descriptor) == wanted) return;
    first()->parameters->setIntegers(descriptor, wanted);
    changed_ = true;
  }

  TLRunFileFacts facts() const {
    TLRunFileFacts result;
    result.good = true;
    result.projectType = project_->projectType();
    result.solverPrecision = project_->solverPrecision;
    result.hasComputation = first() != nullptr;
    if (first() != nullptr) result.userSolverPrecision = first()->userSolverPrecision;
    return result;
  }

  /// Read without the solver's parameters, a run file would be written back without its own: the
  /// launch stays here until the definition file is there.
  static void waitForParameters() {
    const RWCString problem = TLParametersDataBase::problem();
    if (!problem.empty()) say("The launch waits for the solver's definitions. " + problem);
    TLParametersDataBase::instance();
  }

  RWCString path_;
  Handle<TLProject> project_;
  RWCString text_;
  bool changed_ = true;
};

}  // namespace

std::unique_ptr<TLRunFile> makeRunFile() {
  return std::make_unique<ProjectRunFile>();
}
