#include "launching/TRunFileDouble.h"

namespace {

class Double : public TLRunFile {
 public:
  TLRunFileFacts read(const RWCString& /*path*/, bool /*unstructuredTables*/) override {
    return runFileDouble().facts;
  }
  void setTaskCount(std::int32_t /*count*/) override {}
  void setCommunication(std::int32_t /*value*/) override {}
  std::int32_t blockCount() const override { return 0; }
  void balance(TLLoadBalancing& /*balancing*/) override {}
  void setProcesses(const std::function<std::int32_t(std::int32_t)>& /*processOf*/) override {}
  void setMemory(std::int64_t /*integerSize*/, std::int64_t /*realSize*/) override {}
  void storeSteering(const Handle<TLSteeringParameters>& /*steering*/) override {}
  void write() override {}
};

}  // namespace

TRunFileDouble& runFileDouble() {
  static TRunFileDouble instance;
  return instance;
}

std::unique_ptr<TLRunFile> makeRunFile() {
  return std::make_unique<Double>();
}
