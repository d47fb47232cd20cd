#include "tool/TLDistributionView.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr int kBarWidth = 24;

std::string bar(double share) {
  const auto filled = static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * kBarWidth));
  return std::string(static_cast<std::size_t>(filled), '#') +
         std::string(static_cast<std::size_t>(kBarWidth - filled), '.');
}

double ratio(double part, double whole) {
  return whole > 0.0 ? part / whole : 0.0;
}

std::string processorCells(const TLDistributionView& view, std::size_t processor) {
  if (processor >= static_cast<std::size_t>(view.nbProcessors())) {
    return fmt::format("  {:{}}", "", 8 + 13 + 6 + 2 + kBarWidth + 1);
  }
  const double load = view.load(processor);
  return fmt::format("  {:7} {:12.0f} {:5.0f}% |{}|", view.nbBlocks(processor), load,
                     100.0 * ratio(load, view.averageLoad()), bar(ratio(load, view.largestLoad())));
}

std::string summaryLine(const TLDistributionView& view) {
  return fmt::format(
      "{}: efficiency {:.3f}, largest load {:.0f}, average {:.0f}, cut {:.0f} "
      "({:.1f}% of {:.0f})\n",
      view.method(), view.efficiency(), view.largestLoad(), view.averageLoad(), view.cut(),
      100.0 * ratio(view.cut(), view.links()), view.links());
}

}  // namespace

TLDistributionView::TLDistributionView(std::string method, const TLPartitionGraph& graph,
                                       std::vector<std::int32_t> owners, std::int32_t nbProcessors)
    : method_(std::move(method)),
      owners_(std::move(owners)),
      loads_(static_cast<std::size_t>(nbProcessors), 0.0),
      blocks_(static_cast<std::size_t>(nbProcessors), 0) {
  const auto ownerOf = [this](std::int32_t block) {
    return static_cast<std::size_t>(owners_[static_cast<std::size_t>(block - 1)] - 1);
  };
  for (std::int32_t b = 1; b <= graph.nbBlocks(); ++b) {
    loads_[ownerOf(b)] += static_cast<double>(graph.load(b));
    ++blocks_[ownerOf(b)];
    for (const auto& link : graph.links(b)) {
      if (link.id <= b) continue;
      links_ += static_cast<double>(link.weight);
      if (ownerOf(b) != ownerOf(link.id)) cut_ += static_cast<double>(link.weight);
    }
  }
}

double TLDistributionView::averageLoad() const {
  const double total = std::accumulate(loads_.begin(), loads_.end(), 0.0);
  return loads_.empty() ? 0.0 : total / static_cast<double>(loads_.size());
}

double TLDistributionView::largestLoad() const {
  return loads_.empty() ? 0.0 : *std::max_element(loads_.begin(), loads_.end());
}

double TLDistributionView::efficiency() const {
  return ratio(averageLoad(), largestLoad());
}

nlohmann::json TLDistributionView::json() const {
  auto fromZero = owners_;
  for (auto& owner : fromZero) --owner;
  return {{"method", method_},
          {"processors", nbProcessors()},
          {"owners", fromZero},
          {"loads", loads_},
          {"blocks_per_processor", blocks_},
          {"average_load", averageLoad()},
          {"largest_load", largestLoad()},
          {"efficiency", efficiency()},
          {"cut", cut_},
          {"links", links_}};
}

std::string TLDistributionView::ownersLine() const {
  std::string line = "OWNERS";
  for (const auto owner : owners_) line += fmt::format(" {}", owner - 1);
  return line + "\n";
}

std::string distributionTable(const std::vector<TLDistributionView>& views) {
  std::size_t rows = 0;
  std::string text = "         ";
  for (const auto& view : views) {
    rows = std::max(rows, static_cast<std::size_t>(view.nbProcessors()));
    text += fmt::format("  {:<{}}", view.method(), 8 + 13 + 6 + 2 + kBarWidth + 1);
  }
  text += "\nprocessor";
  for (std::size_t i = 0; i < views.size(); ++i) {
    text +=
        fmt::format("  {:>7} {:>12} {:>6}  {:<{}}", "blocks", "load", "of avg", "", kBarWidth + 1);
  }
  text += '\n';
  for (std::size_t p = 0; p < rows; ++p) {
    text += fmt::format("{:9}", p);
    for (const auto& view : views) text += processorCells(view, p);
    text += '\n';
  }
  for (const auto& view : views) text += summaryLine(view);
  return text;
}
