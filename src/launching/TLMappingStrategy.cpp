#include "launching/TLMappingStrategy.h"

#include "launching/TLRemPathMapping.h"

namespace {
TLMappingStrategy* gOther = nullptr;
}

TLMappingStrategy& gMappingStrategy() {
  if (gOther != nullptr) return *gOther;
  static TLRemPathMapping mapping("remote paths.txt");
  return mapping;
}

void setMappingStrategy(TLMappingStrategy* strategy) {
  gOther = strategy;
}
