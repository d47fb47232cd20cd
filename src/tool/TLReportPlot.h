#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "taskengine/TLPlotSeries.h"

/// Drawings of a residual history for a page: an SVG picture with axes, and a legend with the last
/// value of each series. Series that can be put on a logarithmic axis share one, the others get a
/// linear one of their own. Empty without points.
std::string residualPlots(const std::vector<TLPlotSeries>& series);

/// `text` for a page: marks escaped, what is no UTF-8 replaced, control characters left out.
std::string htmlText(std::string_view text);
