#include "launching/TLRunFile.h"

#include "platform/TLHostForm.h"

namespace {

/// Leaves the run file to the solver as it is.
class UntouchedRunFile : public TLRunFile {
 public:
  TLRunFileFacts read(const RWCString& path, bool unstructuredTables) override {
    TLRunFileFacts facts;
    facts.good = hostForm().canRead(path);
    facts.projectType = unstructuredTables ? TLRunFileFacts::kUnstructured : 0;
    facts.solverPrecision = "single";
    return facts;
  }
  void setTaskCount(std::int32_t /*count*/) override {}
  void setCommunication(std::int32_t /*value*/) override {}
  std::int32_t blockCount() const override { return 0; }
  void setProcesses(const std::function<std::int32_t(std::int32_t)>& /*process*/) override {}
  void setMemory(std::int64_t /*integerSize*/, std::int64_t /*realSize*/) override {}
  void storeSteering(const Handle<TLSteeringParameters>& /*steering*/) override {}
  void write() override {}
};

}  // namespace

std::unique_ptr<TLRunFile> makeRunFile() {
  return std::make_unique<UntouchedRunFile>();
}
