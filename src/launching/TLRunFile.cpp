#include "launching/TLRunFile.h"

#include <cstdlib>
#include <string_view>

#include "launching/TLProjectReading.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "project/TLProject.h"
#include "project/TLProjectType.h"

namespace {

/// The run file as a project.
class ProjectRunFile : public TLRunFile {
 public:
  TLRunFileFacts read(const RWCString& path, bool unstructuredTables) override {
    path_ = path;
    project_ = makeHandle<TLProject>();
    if (readProject(*project_, path, unstructuredTables) != 1) {
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

  RWCString path_;
  Handle<TLProject> project_;
  RWCString text_;
  bool changed_ = true;
};

}  // namespace

std::unique_ptr<TLRunFile> makeRunFile() {
  return std::make_unique<ProjectRunFile>();
}
