#pragma once

#include <map>
#include <string>
#include <vector>

#include "DaemonLink.h"

/// What a tool does with steering: asks for the user's settings, reads them when they come, reports
/// values. See docs/messages.md, types 8 and 9.
class Steering {
 public:
  /// A series on its way up. For a residual x is the iteration, and only new points are given; a
  /// curve or surface is always given whole.
  struct Series {
    enum Kind { residual = 0, curve = 1, surface = 2 };
    std::string name;
    Kind kind;
    std::vector<float> x;
    std::vector<float> y;
  };

  explicit Steering(DaemonLink& daemon) : daemon_(daemon) {}

  /// Code 14; the answer is a code 12.
  void ask() const;
  /// Reads the contents of the code 12 that DaemonLink::nextMessage has just told of: the first
  /// number of each parameter by the parameter's name. False when they make no sense.
  static bool readSettings(std::map<std::string, double>& settings);
  /// Code 13.
  void report(const std::vector<Series>& values) const;

 private:
  DaemonLink& daemon_;
};
