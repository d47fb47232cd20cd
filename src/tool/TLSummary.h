#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What there is to say about a file, in sections: each with a title, labelled values, and sections
/// within. Printed for people and as JSON.
struct TLSummary {
  std::string title;  ///< Heading of the section.
  /// Label and value, in the order of printing.
  std::vector<std::pair<std::string, std::string>> values;
  std::vector<TLSummary> sections;  ///< Within this one, behind its values.

  /// Appends a labelled value.
  void add(std::string label, std::string value) {
    values.emplace_back(std::move(label), std::move(value));
  }
  /// Appends an empty section and answers it; valid until the next one.
  TLSummary& section(std::string name) {
    return sections.emplace_back(TLSummary{std::move(name), {}, {}});
  }

  /// Indented lines, the values of a section in one column.
  std::string text() const;
  /// {"title", "values": [[label, value]...], "sections": [...]}
  nlohmann::json json() const;
};

/// All that a text in the block syntax of the suite holds, as JSON: of each block its name, its
/// lines as [key, value], and the blocks within. The lines of "solver_parameters" are descriptors
/// with their values.
nlohmann::json blocksAsJson(std::string_view text);
