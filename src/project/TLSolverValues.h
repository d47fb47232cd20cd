#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "parameters/TLParameters.h"

/// Access to single values of the solver parameters by name, for the steps that read or change a
/// few of them. A thin view: the parameters must outlive it.
class TLSolverValues {
 public:
  /// `parameters` isn't owned.
  explicit TLSolverValues(TLParameters& parameters) : parameters_(parameters) {}

  /// Value of the integer parameter, `absent` when it isn't in use.
  std::int32_t integer(std::string_view descriptor, std::int32_t absent = 0) const;
  /// Values of a real parameter; empty when it isn't in use.
  std::vector<double> reals(std::string_view descriptor) const;
  /// True when the parameter is in use.
  bool has(std::string_view descriptor) const;

  /// Sets a value; a parameter that isn't in use is from now on.
  void setInteger(std::string_view descriptor, std::int32_t value);
  /// Sets a single value; a parameter that isn't in use is from now on.
  void setReal(std::string_view descriptor, double value);
  /// Multiplies all values of a real parameter that is in use.
  void scale(std::string_view descriptor, double factor);

 private:
  TLParameters& parameters_;
};
