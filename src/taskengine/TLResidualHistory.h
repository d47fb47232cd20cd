#pragma once

#include <cstdint>
#include <vector>

#include "taskengine/TLPlotSeries.h"
#include "taskengine/TLRunState.h"
#include "textio/RWCString.h"

class TLSteeringParameters;

/// What a solver has told of its residuals since its start. The values of a step are handed to an
/// interface once and gone then; this keeps, in bounded room, what a plot of the whole run needs.
class TLResidualHistory {
 public:
  /// Takes in what `set` holds beyond what is known. Iterations that go back begin a history anew.
  void take(const TLSteeringParameters& set);
  /// Forgets everything, for a new start of the solver.
  void clear();

  /// One series a residual, x being the iteration.
  const std::vector<TLPlotSeries>& series() const { return series_; }
  /// First and last value of each.
  std::vector<TLRunStateResidual> ends() const;
  /// The last iteration told; 0 for none.
  std::int32_t iteration() const { return iteration_; }

 private:
  std::size_t placeOf(const RWCString& name);

  std::vector<TLPlotSeries> series_;
  std::vector<double> first_;  ///< values, in step with `series_`, which drops points
  std::int32_t iteration_ = 0;
};
