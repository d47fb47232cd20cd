#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "parameters/TLBCLagrangianEntry.h"
#include "parameters/TLChoiceEntry.h"
#include "parameters/TLIntegerEntry.h"
#include "parameters/TLPhysicalEntry.h"
#include "parameters/TLRealEntry.h"
#include "parameters/TLStringEntry.h"
#include "parameters/TLVectorEntry.h"
#include "textio/Handle.h"

/// One kind of boundary condition with its entries: a definition of the database, or what a project
/// sets for a condition of that kind. `typeId` and `typeOpsel` together name the kind.
class TLBCParameters : public RefCounted {
 public:
  /// Reads the record behind its opening line ("bc_parameters" or "control_surface"). 1, or 0 on a
  /// malformed line.
  int read(TLTextSource& source);
  /// Writes the lines of the record, without opening and closing.
  void write(TLTextSink& sink) const;

  /// The first entry called `name`, of whatever kind; null when there is none.
  Handle<TLEntry> entry(std::string_view name) const;
  /// The choice called `name`; null, with a message, when there is none.
  Handle<TLChoiceEntry> choiceEntry(std::string_view name) const;

  /// A copy whose entries are its own.
  Handle<TLBCParameters> clone() const;
  /// Takes over what a project sets: the values of all entries that stand under the same name in
  /// `other`, and its index, name and frame.
  void takeValues(const TLBCParameters& other);
  /// Gives the record and its particle entries the short word of its type ("INL" for "INLET", "SOL"
  /// for "SOLID").
  void setShortWords();

  /// A record for the control surface with this number: its entries are integers, "outlet_" with
  /// the number and "Reference_Control_Surface".
  static Handle<TLBCParameters> makeControlSurface(std::int32_t number);
  /// Which of a solid's speeds `name` tells: 1 for "rotational_speed_1", 2 for
  /// "rotational_speed_2", 0 for neither.
  static int rotationalSpeed(std::string_view name);

  double version = 3.0;                ///< As read; 3.0 is what is written.
  std::int32_t bcParametersIndex = 0;  ///< Of the record in its computation's list.
  RWCString bcType = "UNDEFINED";      ///< The key "TLBCTYPE"; not written while "UNDEFINED".
  RWCString type = "UNDEFINED";        ///< Group of kinds: "INLET", "OUTLET", "SOLID", ...
  std::vector<RWCString> subType;      ///< Words of the line "SUBTYPE". Carried.
  std::vector<RWCString> subType1;     ///< Words of the line "SUBTYPE1". Carried.
  std::vector<RWCString> subType2;     ///< Words of the line "SUBTYPE2". Carried.
  RWCString name;                      ///< Of the condition in the project.
  RWCString condition = "none";        ///< Expression under which the kind is offered.
  std::int32_t expertMode = 0;         ///< 1: offered to experts only.
  std::int32_t typeId = 0;             ///< Id of the kind.
  std::int32_t typeOpsel = 0;          ///< Option of the kind.
  RWCString shortWord;                 ///< "INL", "SOL" or empty
  std::int32_t localSystem = 0;        ///< 1: the next four hold instead of the global ones.
  std::array<double, 3> localLiftDirection{};    ///< x, y, z, as of the next three.
  std::array<double, 3> localDragDirection{};    ///< Direction of the drag.
  std::array<double, 3> localMomentDirection{};  ///< Axis of the moment.
  std::array<double, 3> localMomentCenter{};     ///< Point on that axis.

  /// Values that may be laws in space and time.
  std::vector<Handle<TLPhysicalEntry>> physicalEntries;
  std::vector<Handle<TLPhysicalEntry>> chemicalEntries;  ///< Those of species.
  /// A list keeps the order of the file; names are unique by use only.
  std::vector<Handle<TLRealEntry>> realEntries;
  std::vector<Handle<TLVectorEntry>> vectorEntries;            ///< Three reals each.
  std::vector<Handle<TLIntegerEntry>> integerEntries;          ///< Whole numbers.
  std::vector<Handle<TLChoiceEntry>> choiceEntries;            ///< Choices of one possibility.
  std::vector<Handle<TLStringEntry>> stringEntries;            ///< Texts.
  std::vector<Handle<TLBCLagrangianEntry>> lagrangianEntries;  ///< Those of particles.
  /// Entries of the "_def" blocks: part of a definition, never written.
  std::vector<Handle<TLRealEntry>> realEntriesDef;
  std::vector<Handle<TLVectorEntry>> vectorEntriesDef;    ///< From "vector_entry_def".
  std::vector<Handle<TLIntegerEntry>> integerEntriesDef;  ///< From "integer_entry_def".
  std::vector<Handle<TLChoiceEntry>> choiceEntriesDef;    ///< From "single_choice_def".
  std::vector<Handle<TLStringEntry>> stringEntriesDef;    ///< From "string_entry_def".

 private:
  friend struct TLBCParametersKeys;
  void clearEntries();
  void copyImpedance();
  bool hasImpedanceReals() const;

  std::int32_t entriesRead_ = 0;
};

/// Passes what a project sets in one entry to another of its kind; name, units and condition stay
/// those of the receiver.
void passValue(const TLPhysicalEntry& from, TLPhysicalEntry& to);
/// A real.
void passValue(const TLRealEntry& from, TLRealEntry& to);
/// Three reals.
void passValue(const TLVectorEntry& from, TLVectorEntry& to);
/// A whole number.
void passValue(const TLIntegerEntry& from, TLIntegerEntry& to);
/// The number of the possibility; the receiver keeps its own possibilities.
void passValue(const TLChoiceEntry& from, TLChoiceEntry& to);
/// A text.
void passValue(const TLStringEntry& from, TLStringEntry& to);
