#include "launching/TRunFileDouble.h"

namespace {

class Double : public TLRunFile {
 public:
  TLRunFileFacts read(const RWCString& path, bool unstructuredTables) override {
    note("read " + path + (unstructuredTables ? " (unstructured)" : ""));
    return runFileDouble().facts;
  }
  void setTaskCount(std::int32_t count) override { note("NTASK " + std::to_string(count)); }
  void setCommunication(std::int32_t value) override { note("ICOMP " + std::to_string(value)); }
  std::int32_t blockCount() const override { return runFileDouble().blocks; }
  void balance(TLLoadBalancing& /*balancing*/) override { note("balance"); }
  void setProcesses(const std::function<std::int32_t(std::int32_t)>& processOfBlock) override {
    std::string text = "processes";
    for (std::int32_t i = 0; i < runFileDouble().blocks; ++i) {
      text += " " + std::to_string(processOfBlock(i));
    }
    note(text);
  }
  void setMemory(std::int64_t integerSize, std::int64_t realSize) override {
    note("memory " + std::to_string(integerSize) + " " + std::to_string(realSize));
  }
  void storeSteering(const Handle<TLSteeringParameters>& /*steering*/) override {
    note("steering");
  }
  void write() override { note("write"); }

 private:
  static void note(const std::string& text) { runFileDouble().calls.push_back(text); }
};

}  // namespace

TRunFileDouble& runFileDouble() {
  static TRunFileDouble instance;
  return instance;
}

std::unique_ptr<TLRunFile> makeRunFile() {
  return std::make_unique<Double>();
}
