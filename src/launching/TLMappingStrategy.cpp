#include "launching/TLMappingStrategy.h"

namespace {

class SamePaths : public TLMappingStrategy {
 public:
  bool mapPath(const RWCString& path, const RWCString& /*hostName*/, RWCString& result) override {
    result = path;
    return false;
  }
};

TLMappingStrategy* gStrategy = nullptr;

}  // namespace

TLMappingStrategy& mappingStrategy() {
  static SamePaths samePaths;
  return gStrategy == nullptr ? samePaths : *gStrategy;
}

void setMappingStrategy(TLMappingStrategy* strategy) {
  gStrategy = strategy;
}
