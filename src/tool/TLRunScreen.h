#pragma once

#include <string>
#include <vector>

#include "taskengine/TLPlotSeries.h"
#include "taskengine/TLRunState.h"
#include "tool/TLTerminal.h"

/// A running task as it fits into a terminal: a head line, a line for each step, on demand a plot
/// of the residuals. Draws nothing itself.
class TLRunScreen {
 public:
  /// `terminal` says which colours there are, and must outlive this object.
  explicit TLRunScreen(const TLTerminal& terminal) : terminal_(terminal) {}

  /// What to show.
  struct Content {
    const TLRunState& run;               ///< Must live as long as this.
    std::vector<std::string> lastLines;  ///< per step what it said last; may be shorter
    std::vector<TLPlotSeries> series;    ///< to be drawn; none: no plot
    double now = 0;                      ///< seconds since the epoch
    std::string note;  ///< beside the head: what is the matter, which keys there are
  };

  /// Lines of at most `columns` characters, at most `rows` of them. Where there are more steps than
  /// rows those that run, that failed and that are next stay.
  std::vector<std::string> lines(const Content& content, int columns, int rows) const;

 private:
  std::string head(const Content& content, int columns) const;
  std::string stepLine(const Content& content, std::size_t position, std::size_t nameWidth,
                       int columns) const;

  const TLTerminal& terminal_;
};

/// `text` cut to so many characters, the last one a "…" where something was cut off. Control
/// characters become blanks: what a tool says must not steer the terminal.
std::string cutToColumns(std::string_view text, int columns);
