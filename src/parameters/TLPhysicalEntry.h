#pragma once

#include <vector>

#include "parameters/TLEntry.h"
#include "parameters/TLPolynom.h"
#include "project/TLProfile.h"

/// A physical quantity: a constant, or a law in space, time, frequency or as a polynomial.
class TLPhysicalEntry : public TLEntry {
 public:
  TLPhysicalEntry();
  /// A constant 0 called so.
  explicit TLPhysicalEntry(RWCString entryName);

  int read(TLTextSource& source) override;
  /// The block form, under the name that all entries have for it.
  int readBlock(TLTextSource& source) { return read(source); }
  /// Writes the lines of the block, without opening and closing, at 14 digits. The laws of a
  /// constant entry are not written.
  void write(TLTextSink& sink) const override;

  /// True when `type` is "constant" in any case.
  bool isConstant() const;
  /// 0 constant, 1 of space and time, 2 of space, 3 of time, 4 polynomial, 5 default; a text that
  /// is none of these gives 0.
  int variableTypeCode() const;
  /// Sets the text for a code; outside of 1 to 5 that of 0.
  void setVariableTypeCode(int code);

  /// Gives the entry a polynomial of its own with these coefficients, from the lowest power on.
  void setCoefficients(const std::vector<double>& coefficients);

  double version = 1.0;                 ///< As read; 1.0 is what is written.
  std::int32_t nonDeterministic = 0;    ///< Not 0: `nonDeterministicData` is written.
  RWCString type = "variable";          ///< "constant", or else the laws count.
  double value = 0.0;                   ///< Of a constant, in the units of `valueUnitsName`.
  double minValue = 1000000.0;          ///< Lower bound; 1000000 while untold.
  RWCString variableType = "constant";  ///< Which law: "fct(space)", "polynom", ...
  /// The laws are never null. Entries may share them: replace a law, don't change it in place.
  Handle<TLProfile> timeProfile;
  Handle<TLProfile> spaceProfile;      ///< Law in space.
  Handle<TLPolynom> polynom;           ///< Polynomial, of temperature in fluids.
  Handle<TLProfile> frequencyProfile;  ///< Law in frequency.
  RWCString externalProfile;           ///< Path of a file with the law; empty: none.
};
