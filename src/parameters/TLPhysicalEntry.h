#pragma once

#include "parameters/TLEntry.h"
#include "parameters/TLPolynom.h"
#include "project/TLProfile.h"

/// A physical quantity: a constant, or a law in space, time, frequency or as a polynomial.
class TLPhysicalEntry : public TLEntry {
 public:
  TLPhysicalEntry();
  explicit TLPhysicalEntry(RWCString entryName);

  int read(TLTextSource& source) override;
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

  double version = 1.0;
  std::int32_t nonDeterministic = 0;
  RWCString type = "variable";
  double value = 0.0;
  double minValue = 1000000.0;
  RWCString variableType = "constant";
  /// The laws are never null. Entries may share them: replace a law, don't change it in place.
  Handle<TLProfile> timeProfile;
  Handle<TLProfile> spaceProfile;
  Handle<TLPolynom> polynom;
  Handle<TLProfile> frequencyProfile;
  RWCString externalProfile;
};
