#pragma once

#include <string>
#include <string_view>

#include "taskengine/TLKeptRun.h"

/// A run as one HTML page that needs nothing beside it: steps, times, residuals, reasons, blocks,
/// copies, the end of the log. Readable on a dark and on a light screen, and on paper.
class TLReportPage {
 public:
  /// `live`: the daemon still runs. `now`: seconds since the epoch.
  TLReportPage(const TLKeptRun& kept, bool live, double now);

  /// The whole page, UTF-8.
  std::string html() const;

 private:
  std::string head() const;
  std::string steps() const;
  std::string timeline() const;
  std::string stepDetails(std::size_t position) const;
  std::string log() const;
  std::string namedLog(std::string_view text) const;
  double endOf(const TLRunStateStep& step) const;

  const TLKeptRun& kept_;
  bool live_;
  double now_;
};
