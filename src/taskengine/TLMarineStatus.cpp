#include "taskengine/TLMarineStatus.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "taskengine/TLTask.h"

namespace {

struct Block {
  std::string_view step;
  std::string_view block;
  bool pathFromArgument;  ///< the first argument's value from its sixth character on ("-sim=...")
};

constexpr std::size_t kArgumentPrefix = 5;

constexpr auto kBlocks = std::to_array<Block>({
    {"QUOREL_CFD", "quorelcfd", false},
    {"PREMETIS", "premetis", false},
    {"BRAMOSH2QUOREL", "bramosh2quorel", false},
    {"QUOREL2SORVIT", "quorel2sorvit", false},
    {"POSTMETIS", "postmetis", true},
    {"3dto2d", "3dto2d", true},
});

RWCString pathFromFirstArgument(const TLSubTask& step) {
  const auto first = step.argument(0);
  if (!first || first->value().size() < kArgumentPrefix) return {};
  return first->value().substr(kArgumentPrefix);
}

}  // namespace

std::optional<TLMarineStatus> marineStatusOf(const TLSubTask& step) {
  const auto* const row = std::find_if(kBlocks.begin(), kBlocks.end(), [&](const Block& candidate) {
    return candidate.step == step.name;
  });
  if (row == kBlocks.end()) return std::nullopt;
  const RWCString block(row->block);
  if (row->pathFromArgument) return TLMarineStatus{block, pathFromFirstArgument(step)};
  const Handle<TLTask> task = step.parentTask();
  if (!task) return std::nullopt;
  return TLMarineStatus{block, task->computationPath()};
}
