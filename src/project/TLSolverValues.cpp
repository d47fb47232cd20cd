#include "project/TLSolverValues.h"

#include <utility>

std::int32_t TLSolverValues::integer(std::string_view descriptor, std::int32_t absent) const {
  const auto values = parameters_.integers(descriptor);
  return values.empty() ? absent : values.front();
}

std::vector<double> TLSolverValues::reals(std::string_view descriptor) const {
  return parameters_.reals(descriptor);
}

bool TLSolverValues::has(std::string_view descriptor) const {
  return parameters_.has(descriptor);
}

void TLSolverValues::setInteger(std::string_view descriptor, std::int32_t value) {
  parameters_.setIntegers(descriptor, {value});
}

void TLSolverValues::setReal(std::string_view descriptor, double value) {
  parameters_.setReals(descriptor, {value});
}

void TLSolverValues::scale(std::string_view descriptor, double factor) {
  auto values = parameters_.reals(descriptor);
  if (values.empty() || factor == 1.0) return;
  for (double& value : values) value *= factor;
  parameters_.setReals(parameters_.descriptorOf(descriptor), std::move(values));
}
