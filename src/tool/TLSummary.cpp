#include "tool/TLSummary.h"

#include <fmt/format.h>

#include <algorithm>

#include "textio/TLNumbers.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokenReader.h"
#include "textio/TLTokens.h"

namespace {

void print(const TLSummary& summary, int depth, std::string& out) {
  const std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
  out += fmt::format("{}{}\n", indent, summary.title);
  std::size_t width = 0;
  for (const auto& [label, value] : summary.values) width = std::max(width, label.size());
  for (const auto& [label, value] : summary.values) {
    out += fmt::format("{}  {:<{}}  {}\n", indent, label, width, value);
  }
  for (const auto& section : summary.sections) print(section, depth + 1, out);
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// Builds the tree of blocks with a stack of its own. Writing a tree out takes the program's, so
/// that blocks nested beyond all use stay lines of the deepest one.
class BlockTree {
 public:
  nlohmann::json read(std::string_view text) {
    open_.push_back(makeBlock(""));
    TLTextSource source{std::string(text)};
    TLTokenReader reader(source);
    while (true) {
      reader.skipComments();
      const auto line = source.readLine();
      if (line.empty()) break;
      take(line);
    }
    while (open_.size() > 1) close();
    return std::move(open_.front());
  }

 private:
  static nlohmann::json makeBlock(std::string_view name) {
    return {
        {"name", name}, {"lines", nlohmann::json::array()}, {"blocks", nlohmann::json::array()}};
  }

  void take(std::string_view line) {
    TLTokens tokens(line);
    const auto key = tokens.next();
    const bool begins = equalIgnoringCase(key, "tl_begin");
    const bool ends = equalIgnoringCase(key, "tl_end");
    const bool tooDeep = begins ? open_.size() == kDeepest : ends && beyond_ > 0;
    if (tooDeep) beyond_ += begins ? 1 : -1;
    if (begins && !tooDeep) {
      open_.push_back(makeBlock(tokens.next()));
      awaitsValue_ = false;
    } else if (ends && !tooDeep) {
      if (open_.size() > 1) close();
    } else {
      addLine(key, trimmed(tokens.rest()), line);
    }
  }

  // A descriptor's values stand on the line behind it.
  void addLine(std::string_view key, std::string_view value, std::string_view line) {
    auto& block = open_.back();
    const bool inParameters =
        equalIgnoringCase(block["name"].get_ref<const std::string&>(), "solver_parameters");
    if (inParameters && awaitsValue_) {
      block["lines"].back()[1] = trimmed(line);
      awaitsValue_ = false;
      return;
    }
    block["lines"].push_back({key, value});
    awaitsValue_ = inParameters && !key.starts_with("VELSTRA,");
  }

  void close() {
    nlohmann::json block = std::move(open_.back());
    open_.pop_back();
    open_.back()["blocks"].push_back(std::move(block));
    awaitsValue_ = false;
  }

  static constexpr std::size_t kDeepest = 256;
  std::vector<nlohmann::json> open_;
  int beyond_ = 0;  // blocks open within the deepest one
  bool awaitsValue_ = false;
};

}  // namespace

std::string TLSummary::text() const {
  std::string out;
  print(*this, 0, out);
  return out;
}

nlohmann::json TLSummary::json() const {
  nlohmann::json result{
      {"title", title}, {"values", nlohmann::json::array()}, {"sections", nlohmann::json::array()}};
  for (const auto& [label, value] : values) {
    result["values"].push_back({label, value});
  }
  for (const auto& section : sections) result["sections"].push_back(section.json());
  return result;
}

nlohmann::json blocksAsJson(std::string_view text) {
  return BlockTree().read(text);
}
