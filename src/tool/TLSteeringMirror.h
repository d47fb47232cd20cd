#pragma once

#include <map>
#include <string>
#include <vector>

#include "messaging/TLProcessMessage.h"
#include "taskengine/TLPlotSeries.h"

/// What an interface holds of the steering values of a task: says so in its polls, and takes in
/// what the daemon answers with. Of a long run it keeps as much as a drawing needs.
class TLSteeringMirror {
 public:
  /// `names`: per step the name of its steering set (the file behind "-steering"), empty where that
  /// isn't known.
  explicit TLSteeringMirror(std::vector<std::string> names) : names_(std::move(names)) {}

  /// Appends what is held to a poll, one sub-message a step.
  void addTo(TLProcessMessage& poll) const;
  /// Takes values (a message of code 13) in; other contents are passed over.
  void take(const TLProcessMessage& message);

  /// The residual histories that have points, all sets behind one another.
  std::vector<TLPlotSeries> residuals() const;
  /// One line per set of which values came since the last call: "iteration 300: rms 1.2e-05, ...".
  std::vector<std::string> takeNews();

 private:
  struct Set {
    Handle<TLSteeringParameters> known;  ///< of each series the last point alone
    std::vector<TLPlotSeries> residuals;
    bool fresh = false;
  };

  static void takeResidual(Set& set, const TLSteeringParameter& received);
  static std::string newsOf(const Set& set);

  std::vector<std::string> names_;
  std::map<std::string, Set> sets_;
};
